#pragma once

#include <QString>
#include <QXmlStreamAttributes>

class QIODevice;

// The attributes of one element, in document order, with the value of a
// qualified name as a view (empty when the element has no such attribute).
using XmlAttributes = QXmlStreamAttributes;

// The event interface the print driver implements. Each callback answers
// whether parsing should go on; returning false stops the parse at once.
class XmlContentHandler
{
public:
    virtual ~XmlContentHandler() = default;

    virtual bool startDocument() { return true; }
    virtual bool startElement(const QString& namespaceURI, const QString& localName,
                              const QString& qName, const XmlAttributes& atts)
    {
        (void)namespaceURI; (void)localName; (void)qName; (void)atts;
        return true;
    }
    virtual bool endElement(const QString& namespaceURI, const QString& localName,
                            const QString& qName)
    {
        (void)namespaceURI; (void)localName; (void)qName;
        return true;
    }
    virtual bool endDocument() { return true; }
};

// Streams one XML document from a device into a content handler, in a single
// pass that keeps nothing of the document. startDocument always comes first,
// even when the device cannot be read; endDocument only follows a complete,
// well-formed parse. Returns true when that happened.
bool parseXml(QIODevice* input, XmlContentHandler& handler);

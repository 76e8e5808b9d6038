#include "saxreader.h"

#include <QIODevice>
#include <QXmlStreamReader>

bool parseXml(QIODevice* input, XmlContentHandler& handler)
{
    if (!handler.startDocument())
        return false;
    if (!input || !input->isReadable())
        return false;

    QXmlStreamReader reader(input);
    // Names are passed on as written; a prefix without a declaration is not
    // an error for a print request.
    reader.setNamespaceProcessing(false);

    // Requests repeat the same few element names thousands of times: the
    // name texts are only rebuilt when the name changes.
    QString qName;
    QString localName;
    const auto takeNames = [&reader, &qName, &localName] {
        if (reader.qualifiedName() == qName)
            return;
        qName = reader.qualifiedName().toString();
        localName = reader.prefix().isEmpty() ? qName : reader.name().toString();
    };
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            takeNames();
            if (!handler.startElement(QString(), localName, qName, reader.attributes()))
                return false;
            break;
        case QXmlStreamReader::EndElement:
            takeNames();
            if (!handler.endElement(QString(), localName, qName))
                return false;
            break;
        default:
            break;
        }
    }
    if (reader.hasError())
        return false;
    return handler.endDocument();
}

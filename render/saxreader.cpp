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

    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement: {
            const QString qName = reader.qualifiedName().toString();
            if (!handler.startElement(QString(), reader.name().toString(), qName,
                                      reader.attributes()))
                return false;
            break;
        }
        case QXmlStreamReader::EndElement:
            if (!handler.endElement(QString(), reader.name().toString(),
                                    reader.qualifiedName().toString()))
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

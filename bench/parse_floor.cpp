// One bare pass of QXmlStreamReader over a file, as the print run configures
// it: the least that reading the request can cost. Counting the elements
// keeps the loop from being anything but a full pass.
#include <QFile>
#include <QXmlStreamReader>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s request.xml\n", argv[0]);
        return 2;
    }
    QFile input(QString::fromLocal8Bit(argv[1]));
    if (!input.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot open %s\n", argv[1]);
        return 1;
    }
    QXmlStreamReader reader(&input);
    reader.setNamespaceProcessing(false);
    long long elements = 0;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement)
            ++elements;
    }
    if (reader.hasError() || elements == 0) {
        std::fprintf(stderr, "%s: %s\n", argv[1], qPrintable(reader.errorString()));
        return 1;
    }
    return 0;
}

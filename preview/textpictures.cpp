#include "textpictures.h"

#include "findings.h"
#include "picture.h"

using namespace Qt::StringLiterals;

namespace preview {

namespace {

// Escaped for XML text and attribute values alike.
QString escaped(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (QChar c : shownText(text)) {
        switch (c.unicode()) {
        case u'&': out += "&amp;"_L1; break;
        case u'<': out += "&lt;"_L1; break;
        case u'>': out += "&gt;"_L1; break;
        case u'"': out += "&quot;"_L1; break;
        default: out += c;
        }
    }
    return out;
}

// Text inks by class, so that every line does not repeat its colour.
QLatin1StringView classOf(Canvas::Ink ink)
{
    switch (ink) {
    case Canvas::Ink::Annotation: return "a"_L1;
    case Canvas::Ink::LineNumber: return "n"_L1;
    case Canvas::Ink::Note: return "f"_L1;
    case Canvas::Ink::Heading: return "h"_L1;
    default: return "t"_L1;
    }
}

class SvgCanvas : public Canvas
{
public:
    explicit SvgCanvas(QString& out) : out(out) {}

    void fill(int x, int y, int width, int height, Ink ink) override
    {
        out += u"<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" fill=\"%5\"/>\n"_s.arg(x).arg(y).arg(width).arg(height).arg(
            colourOf(ink));
    }

    void horizontalLine(int x1, int x2, int y, Ink ink, bool dashed) override
    {
        out += u"<line x1=\"%1\" y1=\"%3\" x2=\"%2\" y2=\"%3\" stroke=\"%4\"%5/>\n"_s.arg(x1).arg(x2).arg(y).arg(
            colourOf(ink), dashed ? " stroke-dasharray=\"6 4\""_L1 : ""_L1);
    }

    void text(int x, int baseline, const QString& text, Ink ink, qsizetype columns) override
    {
        out += u"<text x=\"%1\" y=\"%2\" class=\"%3\""_s.arg(x).arg(baseline).arg(classOf(ink));
        if (columns > 0) {
            out += u" textLength=\"%1\" lengthAdjust=\"spacingAndGlyphs\""_s.arg(columns * Metrics().charWidth);
        }
        out += u'>' + escaped(text) + "</text>\n"_L1;
    }

    void printedText(int x, int baseline, const QString& text, qsizetype columns, bool bold,
                     bool doubleHeight) override
    {
        out += u"<text class=\"t\""_s;
        if (doubleHeight)
            out += u" x=\"0\" y=\"0\" transform=\"translate(%1 %2) scale(1 2)\""_s.arg(x).arg(baseline);
        else
            out += u" x=\"%1\" y=\"%2\""_s.arg(x).arg(baseline);
        if (bold)
            out += " font-weight=\"bold\""_L1;
        if (columns > 0)
            out += u" textLength=\"%1\" lengthAdjust=\"spacingAndGlyphs\""_s.arg(columns * Metrics().charWidth);
        out += u'>' + escaped(text) + "</text>\n"_L1;
    }

private:
    QString& out;
};

QString svgElement(const Paper& paper)
{
    const Picture picture(paper, Metrics());
    const std::vector<Band> bands = picture.bands();
    const int width = picture.width();
    const int height = picture.height(bands);
    QString out;
    out += u"<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%2\" viewBox=\"0 0 %1 %2\""
           " xml:space=\"preserve\">\n"_s.arg(width).arg(height);
    out += "<style>text{font-family:'DejaVu Sans Mono',Menlo,Consolas,monospace;font-size:15px;"
           "white-space:pre}"_L1;
    for (const Canvas::Ink ink : {Canvas::Ink::Text, Canvas::Ink::Annotation, Canvas::Ink::LineNumber,
                                  Canvas::Ink::Note, Canvas::Ink::Heading}) {
        out += u".%1{fill:%2}"_s.arg(classOf(ink), colourOf(ink));
    }
    out += ".a{font-style:italic}</style>\n"_L1;
    SvgCanvas canvas(out);
    picture.draw(canvas, bands);
    out += "</svg>\n"_L1;
    return out;
}

} // namespace

QByteArray svgPicture(const Paper& paper)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + svgElement(paper).toUtf8();
}

QByteArray htmlPicture(const Paper& paper)
{
    QString out = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>"_L1
                  + escaped(paper.source)
                  + "</title>\n<style>body{font-family:sans-serif;background:#ebe9e4;margin:1em}"
                    "li{font-family:monospace;white-space:pre-wrap}</style>\n</head>\n<body>\n"_L1;
    out += svgElement(paper);
    const QStringList findings = findingLines(paper);
    if (findings.isEmpty()) {
        out += "<p>Nothing flagged.</p>\n"_L1;
    } else {
        out += "<ol>\n"_L1;
        for (const QString& finding : findings)
            out += "<li>"_L1 + escaped(finding) + "</li>\n"_L1;
        out += "</ol>\n"_L1;
    }
    out += "</body>\n</html>\n"_L1;
    return out.toUtf8();
}

} // namespace preview

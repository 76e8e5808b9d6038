#include "pngpicture.h"

#include <QFile>
#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>

using namespace Qt::StringLiterals;

namespace preview {

namespace {

QFont gridFont()
{
    QFont font(u"DejaVu Sans Mono"_s);
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPixelSize(15);
    return font;
}

} // namespace

Metrics pngMetrics()
{
    const QFont font = gridFont();
    const QFontMetrics measure(font);
    Metrics metrics;
    metrics.charWidth = qMax(1, measure.horizontalAdvance(u'M'));
    metrics.rowHeight = qMax(20, measure.height() + 4);
    metrics.baseline = (metrics.rowHeight - measure.height()) / 2 + measure.ascent();
    return metrics;
}

namespace {

class PainterCanvas : public Canvas
{
public:
    PainterCanvas(QPainter& painter, const QFont& font) : painter(painter), plain(font), italic(font)
    {
        italic.setItalic(true);
    }

    void fill(int x, int y, int width, int height, Ink ink) override
    {
        painter.fillRect(x, y, width, height, QColor::fromString(colourOf(ink)));
    }

    void horizontalLine(int x1, int x2, int y, Ink ink, bool dashed) override
    {
        painter.setPen(QPen(QColor::fromString(colourOf(ink)), 1, dashed ? Qt::DashLine : Qt::SolidLine));
        painter.drawLine(x1, y, x2, y);
    }

    void text(int x, int baseline, const QString& text, Ink ink, qsizetype) override
    {
        painter.setFont(ink == Ink::Annotation ? italic : plain);
        painter.setPen(QColor::fromString(colourOf(ink)));
        painter.drawText(QPoint(x, baseline), text);
    }

    void printedText(int x, int baseline, const QString& text, qsizetype, bool bold, bool doubleHeight) override
    {
        QFont font = plain;
        font.setBold(bold);
        painter.save();
        painter.setFont(font);
        painter.setPen(QColor::fromString(colourOf(Ink::Text)));
        painter.translate(x, baseline);
        if (doubleHeight)
            painter.scale(1, 2);
        painter.drawText(QPoint(0, 0), text);
        painter.restore();
    }

private:
    QPainter& painter;
    QFont plain;
    QFont italic;
};

} // namespace

namespace {

bool encode(png_structp png, png_infop info, std::FILE* file, const QImage& image)
{
    // libpng reports its failures by a long jump back here; nothing in this
    // function owns anything that would need destroying.
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, png_uint_32(image.width()), png_uint_32(image.height()), 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_set_compression_level(png, 1);
    png_write_info(png, info);
    for (int y = 0; y < image.height(); ++y)
        png_write_row(png, image.constScanLine(y));
    png_write_end(png, nullptr);
    return true;
}

// Writes an RGB888 image. Qt's own PNG writer lets libpng try every row
// filter on every row, which costs ten times what drawing the page does;
// text on a plain ground compresses as well with the one cheap filter that
// suits it (each byte less the one to its left) and zlib's fastest level.
bool writePng(const QImage& image, const QString& name, QString* error)
{
    const QByteArray path = QFile::encodeName(name);
    std::FILE* file = std::fopen(path.constData(), "wb");
    if (!file) {
        *error = name + ": "_L1 + QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    bool written = png && info && encode(png, info, file, image);
    png_destroy_write_struct(&png, &info);
    if (std::fclose(file) != 0)
        written = false;
    if (!written)
        *error = name + ": the PNG file could not be written"_L1;
    return written;
}

} // namespace

QString pageFileName(const QString& path, int number)
{
    if (number == 1)
        return path;
    const qsizetype dot = path.lastIndexOf(u'.');
    const qsizetype slash = path.lastIndexOf(u'/');
    const qsizetype end = dot > slash ? dot : path.size();
    return path.first(end) + u'-' + QString::number(number) + path.sliced(end);
}

namespace {

// What the pages after the first `drawn` of `pages` would have shown.
QString leftOutText(const std::vector<std::vector<Band>>& pages, std::size_t drawn)
{
    qsizetype first = 0, last = 0;
    for (std::size_t i = drawn; i < pages.size(); ++i) {
        for (const Band& band : pages[i]) {
            if (band.kind == Band::Kind::Row) {
                first = first ? first : band.number;
                last = band.number;
            }
        }
    }
    QString text = u"the PNG picture stops after page %1 of %2"_s.arg(drawn).arg(pages.size());
    if (first)
        text += u": printed lines %1 to %2 are left out"_s.arg(first).arg(last);
    return text;
}

} // namespace

PngPages writePngPages(const Paper& paper, const QString& path, const PageBounds& bounds)
{
    const QFont font = gridFont();
    const Picture picture(paper, pngMetrics());
    const int height = int(qMin<qint64>(bounds.height, bounds.pixels / picture.width()));
    const std::vector<std::vector<Band>> pages = picture.pages(height);
    const std::size_t drawn = qMin(pages.size(), std::size_t(qMax(bounds.pages, 1)));
    PngPages result;
    if (drawn < pages.size())
        result.leftOut = leftOutText(pages, drawn);
    for (std::size_t i = 0; i < drawn; ++i) {
        // One page at a time: the image of the last is gone before the next is made.
        QImage image(picture.width(), picture.height(pages[i]), QImage::Format_RGB32);
        if (image.isNull()) {
            result.error = u"out of memory for a page of the picture"_s;
            return result;
        }
        {
            QPainter painter(&image);
            PainterCanvas canvas(painter, font);
            picture.draw(canvas, pages[i], int(i) + 1, int(pages.size()));
            // The title's second line is free for the note.
            if (i + 1 == drawn && !result.leftOut.isEmpty()) {
                const Metrics& grid = picture.metrics();
                canvas.text(picture.textLeft(), picture.top(pages[i], 0) + grid.rowHeight + grid.baseline,
                            result.leftOut, Canvas::Ink::Note, result.leftOut.size());
            }
        }
        const QString name = pageFileName(path, int(i) + 1);
        if (!writePng(image.convertToFormat(QImage::Format_RGB888), name, &result.error))
            return result;
        result.written << name;
    }
    for (int stale = int(drawn) + 1; QFile::exists(pageFileName(path, stale)); ++stale)
        QFile::remove(pageFileName(path, stale));
    return result;
}

} // namespace preview

#include "pngpicture.h"

#include <QFile>
#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QImageWriter>
#include <QPainter>

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

private:
    QPainter& painter;
    QFont plain;
    QFont italic;
};

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

QStringList writePngPages(const Paper& paper, const QString& path, QString* error, int largestHeight)
{
    const QFont font = gridFont();
    const Picture picture(paper, pngMetrics());
    const std::vector<std::vector<Band>> pages = picture.pages(largestHeight);
    QStringList written;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        // One page at a time: the image of the last is gone before the next is made.
        QImage image(picture.width(), picture.height(pages[i]), QImage::Format_RGB32);
        if (image.isNull()) {
            *error = u"out of memory for a page of the picture"_s;
            return written;
        }
        {
            QPainter painter(&image);
            PainterCanvas canvas(painter, font);
            picture.draw(canvas, pages[i], int(i) + 1, int(pages.size()));
        }
        const QString name = pageFileName(path, int(i) + 1);
        QImageWriter writer(name, "png");
        if (!writer.write(image)) {
            *error = name + ": "_L1 + writer.errorString();
            return written;
        }
        written << name;
    }
    for (int stale = int(pages.size()) + 1; QFile::exists(pageFileName(path, stale)); ++stale)
        QFile::remove(pageFileName(path, stale));
    return written;
}

} // namespace preview

#pragma once

#include "paper.h"
#include "picture.h"

#include <QString>
#include <QStringList>

namespace preview {

// How large a PNG picture may be. A long document takes memory for one
// page at a time however long it is, and a page of very wide paper is
// shorter; a picture that would need more pages stops, and says so.
struct PageBounds
{
    int height = 6000;
    qint64 pixels = 12'000'000; // about 80 MB while the page is drawn
    int pages = 100;
};

struct PngPages
{
    QStringList written;
    // Empty, or why no more pages were written.
    QString error;
    // Empty, or which pages and printed lines the bounds left out.
    QString leftOut;
};

// Writes the picture as PNG pages: `path` for the first, then, with "-2",
// "-3", ... before the suffix, the pages that follow. Pages of the same
// name left by an earlier, longer picture are removed.
PngPages writePngPages(const Paper& paper, const QString& path, const PageBounds& bounds = {});

// The character grid of PNG pictures, from the font they are drawn in.
// Needs the GUI application object.
Metrics pngMetrics();

// The name of page `number` (from 1) of a picture written to `path`.
QString pageFileName(const QString& path, int number);

} // namespace preview

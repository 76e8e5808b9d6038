#pragma once

#include "paper.h"
#include "picture.h"

#include <QString>
#include <QStringList>

namespace preview {

// No PNG page is taller than this, so that a long document takes memory
// for one page at a time (about 25 MB) however long it is.
inline constexpr int largestPageHeight = 6000;

// Writes the picture as PNG pages: `path` for the first, then, with "-2",
// "-3", ... before the suffix, the pages that follow. Pages of the same
// name left by an earlier, longer picture are removed. Answers the files
// written; on failure, `error` says why.
QStringList writePngPages(const Paper& paper, const QString& path, QString* error,
                          int largestHeight = largestPageHeight);

// The character grid of PNG pictures, from the font they are drawn in.
// Needs the GUI application object.
Metrics pngMetrics();

// The name of page `number` (from 1) of a picture written to `path`.
QString pageFileName(const QString& path, int number);

} // namespace preview

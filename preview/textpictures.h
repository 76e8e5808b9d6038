#pragma once

#include "paper.h"

#include <QByteArray>

namespace preview {

// The picture as SVG: text only, the same bytes for the same paper on
// every machine. Coordinates are those of a 15-pixel monospace font; each
// line is stretched to its exact number of cells, so that columns line up
// whatever monospace font the viewer has.
QByteArray svgPicture(const Paper& paper);

// A page with the SVG picture and the list of findings.
QByteArray htmlPicture(const Paper& paper);

} // namespace preview

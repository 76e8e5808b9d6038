#pragma once

#include "paper.h"

#include <QStringList>

namespace preview {

// One line per finding, in the order of the printed lines:
//   SOURCE: printed line N: WHAT (request line L, column C)
// the request's place only for findings about the request, and "no printed
// line" for findings that have none.
QStringList findingLines(const Paper& paper);

} // namespace preview

#pragma once

#include <QByteArrayView>

#include <initializer_list>

// The suite reports a fault as one line on standard output (not standard
// error) and carries on. The pieces are written as they are, followed by a
// line end, and flushed at once so that the line keeps its place among
// anything else written there.
void printDiagnostic(std::initializer_list<QByteArrayView> pieces);

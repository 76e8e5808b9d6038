#include "diagnostics.h"

#include <cstdio>

void printDiagnostic(std::initializer_list<QByteArrayView> pieces)
{
    for (QByteArrayView piece : pieces)
        std::fwrite(piece.data(), 1, std::size_t(piece.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

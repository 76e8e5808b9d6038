#include "diagnostics.h"

#include <cstdio>

void printDiagnostic(std::initializer_list<QByteArrayView> pieces)
{
    // An empty piece may have no data at all, which fwrite must not be given.
    for (QByteArrayView piece : pieces) {
        if (!piece.isEmpty())
            std::fwrite(piece.data(), 1, std::size_t(piece.size()), stdout);
    }
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

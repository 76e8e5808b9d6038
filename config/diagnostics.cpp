#include "diagnostics.h"

#include <cstdio>

namespace {

DiagnosticCapture* activeCapture = nullptr;

} // namespace

DiagnosticCapture::DiagnosticCapture()
    : outer(activeCapture)
{
    activeCapture = this;
}

DiagnosticCapture::~DiagnosticCapture()
{
    activeCapture = outer;
}

void printDiagnostic(std::initializer_list<QByteArrayView> pieces)
{
    if (activeCapture) {
        QByteArray line;
        for (QByteArrayView piece : pieces)
            line += piece;
        activeCapture->collected.append(line);
        return;
    }
    // An empty piece may have no data at all, which fwrite must not be given.
    for (QByteArrayView piece : pieces) {
        if (!piece.isEmpty())
            std::fwrite(piece.data(), 1, std::size_t(piece.size()), stdout);
    }
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

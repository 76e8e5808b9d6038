#include "diagnostics.h"

#include <cstdio>

namespace {

DiagnosticCapture* activeCapture = nullptr;
std::FILE* chosenStream = nullptr; // standard output

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
    std::FILE* stream = diagnosticStream();
    // An empty piece may have no data at all, which fwrite must not be given.
    for (QByteArrayView piece : pieces) {
        if (!piece.isEmpty())
            std::fwrite(piece.data(), 1, std::size_t(piece.size()), stream);
    }
    std::fputc('\n', stream);
    std::fflush(stream);
}

void setDiagnosticStream(std::FILE* stream)
{
    chosenStream = stream;
}

std::FILE* diagnosticStream()
{
    return chosenStream ? chosenStream : stdout;
}

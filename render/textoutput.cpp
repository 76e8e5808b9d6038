#include "textoutput.h"

#include <QIODevice>

namespace {

constexpr qsizetype bufferSize = 64 * 1024;

} // namespace

TextOutput::TextOutput(QIODevice* device)
    : device(device), encoder(QStringConverter::System)
{
    buffer.reserve(bufferSize);
}

TextOutput::~TextOutput()
{
    flush();
}

TextOutput& TextOutput::operator<<(QStringView text)
{
    const qsizetype needed = encoder.requiredSpace(text.size());
    if (buffer.size() + needed > bufferSize)
        flush();
    const qsizetype used = buffer.size();
    buffer.resize(used + needed);
    char* end = encoder.appendToBuffer(buffer.data() + used, text);
    buffer.resize(end - buffer.constData());
    return *this;
}

void TextOutput::flush()
{
    if (buffer.isEmpty())
        return;
    device->write(buffer);
    // Shrinking keeps the capacity, so the buffer is allocated once.
    buffer.resize(0);
}

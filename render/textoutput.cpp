#include "textoutput.h"

#include "codepage.h"

#include <QIODevice>

TextOutput::TextOutput(QIODevice* device, const CodePage& codePage)
    : device(device), buffer(new char[bufferSize])
{
    setCodePage(codePage);
}

void TextOutput::setCodePage(const CodePage& codePage)
{
    encoder = codePage.encoder();
    asciiAsItself = codePage.writesAsciiAsItself();
}

TextOutput::~TextOutput()
{
    flush();
}

// Text that may not fit what is left of the buffer: the buffer is emptied
// first, and text longer than a quarter of it goes in pieces.
void TextOutput::encodeLong(QStringView text)
{
    flush();
    constexpr qsizetype piece = bufferSize / 4;
    while (text.size() > piece) {
        // A piece never ends inside a surrogate pair.
        const qsizetype cut = QChar::isHighSurrogate(text[piece - 1].unicode()) ? piece - 1 : piece;
        encode(text.first(cut));
        flush();
        text = text.sliced(cut);
    }
    encode(text);
}

void TextOutput::writeLongBytes(QByteArrayView bytes)
{
    if (bytes.size() > bufferSize - used)
        flush();
    if (bytes.size() > bufferSize) {
        if (!writeFailed)
            writeFailed = device->write(bytes.data(), bytes.size()) != bytes.size();
        return;
    }
    std::memcpy(buffer.get() + used, bytes.data(), bytes.size());
    used += bytes.size();
}

void TextOutput::flush()
{
    if (used == 0)
        return;
    if (!writeFailed)
        writeFailed = device->write(buffer.get(), used) != used;
    used = 0;
}

QString TextOutput::error() const
{
    if (!writeFailed)
        return {};
    const QString reason = device->errorString();
    return reason.isEmpty() ? QStringLiteral("the device took fewer bytes than were written") : reason;
}

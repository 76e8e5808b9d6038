#pragma once

#include "asciiblocks.h"

#include <QByteArrayView>
#include <QString>
#include <QStringEncoder>
#include <QStringView>

#include <cstring>
#include <memory>

class CodePage;
class QIODevice;

// The text stream on the print file: text is encoded straight into one
// buffer, which goes to the device in large pieces. A long receipt writes a
// line per item, so the stream does no more per line than encode and append:
// ASCII, most of a print file, is copied byte by byte, and only other text
// goes through the encoder.
class TextOutput
{
public:
    TextOutput(QIODevice* device, const CodePage& codePage);
    ~TextOutput();

    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;

    TextOutput& operator<<(QStringView text)
    {
        // Four bytes are the most one UTF-16 unit becomes.
        if (text.size() <= (bufferSize - used) / 4)
            encode(text);
        else
            encodeLong(text);
        return *this;
    }
    // Bytes that are no text (printer commands, images), as they are.
    void writeBytes(QByteArrayView bytes);
    void flush();
    // Whether a write to the device fell short (a full disk, a closed
    // pipe); nothing is written after that, so the file ends where the
    // device stopped taking bytes. The device's reason, if it failed.
    bool failed() const { return writeFailed; }
    QString error() const;
    // Text from here on is written in this code page.
    void setCodePage(const CodePage& codePage);

private:
    static constexpr qsizetype bufferSize = 64 * 1024;

    void encode(QStringView text)
    {
        char* out = buffer.get() + used;
        const char16_t* in = text.utf16();
        const char16_t* const end = in + text.size();
        // Printers' code pages write ASCII as itself: it is copied four
        // characters at a time where it can.
        if (asciiAsItself) {
            const qsizetype blocks = AsciiBlocks::narrow(in, end - in, out);
            in += blocks;
            out += blocks;
            for (; end - in >= 4; in += 4, out += 4) {
                quint64 units;
                std::memcpy(&units, in, 8);
                if (units & 0xff80ff80ff80ff80ull)
                    break;
                for (int k = 0; k < 4; ++k)
                    out[k] = char(in[k]);
            }
            while (in != end && *in < 0x80)
                *out++ = char(*in++);
        }
        if (in != end)
            out = encoder.appendToBuffer(out, QStringView(in, end));
        used = out - buffer.get();
    }
    void encodeLong(QStringView text);

    QIODevice* device;
    QStringEncoder encoder;
    bool asciiAsItself = true;
    std::unique_ptr<char[]> buffer;
    qsizetype used = 0;
    bool writeFailed = false;
};

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
        if (text.size() <= (bufferSize - used) / 4)
            encode(text);
        else
            encodeLong(text);
        return *this;
    }
    // The device's own command text, which is ASCII.
    TextOutput& operator<<(QLatin1StringView command)
    {
        if (command.size() <= (bufferSize - used) / 4)
            encode(command);
        else
            encodeLong(QString(command));
        return *this;
    }
    // Pieces of one line (texts, or command text in QLatin1StringView),
    // written one after the other: a printed line is a few pieces, and
    // checking the room for them once is cheaper than for each.
    template<typename... Pieces>
    void write(const Pieces&... pieces)
    {
        // Four bytes are the most one UTF-16 unit becomes.
        const qsizetype units = (qsizetype(pieces.size()) + ...);
        if (units <= (bufferSize - used) / 4)
            (encode(pieces), ...);
        else
            (*this << ... << pieces);
    }
    // Bytes as they are: printer commands, images, and text already in the
    // print file's encoding; given in pieces like write().
    template<typename... Pieces>
    void writeBytes(const Pieces&... pieces)
    {
        const qsizetype size = (QByteArrayView(pieces).size() + ...);
        if (size <= bufferSize - used) {
            (append(QByteArrayView(pieces)), ...);
        } else {
            (writeLongBytes(QByteArrayView(pieces)), ...);
        }
    }
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
        // Printers' code pages write ASCII as itself: it is copied in blocks.
        if (asciiAsItself) {
            const qsizetype ascii = AsciiBlocks::narrow(in, end - in, out);
            in += ascii;
            out += ascii;
        }
        if (in != end)
            out = encoder.appendToBuffer(out, QStringView(in, end));
        used = out - buffer.get();
    }
    void encode(QLatin1StringView command)
    {
        if (!asciiAsItself) {
            encode(QString(command));
            return;
        }
        append(QByteArrayView(command.data(), command.size()));
    }
    void encodeLong(QStringView text);
    void append(QByteArrayView bytes)
    {
        AsciiBlocks::copyShort(buffer.get() + used, bytes.data(), std::size_t(bytes.size()));
        used += bytes.size();
    }
    void writeLongBytes(QByteArrayView bytes);

    QIODevice* device;
    QStringEncoder encoder;
    bool asciiAsItself = true;
    std::unique_ptr<char[]> buffer;
    qsizetype used = 0;
    bool writeFailed = false;
};

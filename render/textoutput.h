#pragma once

#include <QByteArray>
#include <QStringEncoder>
#include <QStringView>

class QIODevice;

// The text stream on the print file: text is encoded in the locale's 8-bit
// encoding straight into one reused buffer, which goes to the device in
// large pieces. A long receipt writes a line per item, so the stream does
// no more per line than encode and append.
class TextOutput
{
public:
    explicit TextOutput(QIODevice* device);
    ~TextOutput();

    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;

    TextOutput& operator<<(QStringView text);
    void flush();

private:
    QIODevice* device;
    QStringEncoder encoder;
    QByteArray buffer;
};

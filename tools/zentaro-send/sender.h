#pragma once

// What zentaro-send puts around the suite's paged copy (pagedcopy.h): the
// print file's lines as its printers take them, and a destination opened
// for the whole run, written in batches. How the bytes travel is the
// destination's business.

#include "destination.h"
#include "pagedcopy.h"

#include <QByteArray>

#include <vector>

// A print file, read whole (standard input for "-"), in the pieces it is
// sent in: a line with its line end, or up to 127 bytes of a longer one, as
// the printers' line buffers take them; an ESC/POS file in its LF-ended
// lines, whatever their length.
class PrintFileLines final : public pagedcopy::LineSource
{
public:
    bool open(const QString& path);
    QByteArrayView nextLine() override;
    bool atEnd() const override { return m_next >= m_text.size(); }
    bool rewind() override;
    QString errorString() const override { return m_error; }

private:
    QByteArray m_text;
    qsizetype m_longest = 127;
    qsizetype m_next = 0;
    QString m_error;
};

// An open destination. Lines are gathered and written together; the copy
// has them sent before every pause and paper prompt.
class DestinationSink final : public pagedcopy::LineSink
{
public:
    DestinationSink(delivery::Destination& destination, delivery::Milliseconds timeout)
        : m_destination(destination), m_timeout(timeout)
    {
    }

    bool write(QByteArrayView line) override;
    bool flush() override;
    quint64 linesOut() const override { return m_lines; }
    quint64 bytesOut() const override { return m_bytesOut; }
    QString errorString() const override { return m_destination.errorString(); }

private:
    delivery::Destination& m_destination;
    delivery::Milliseconds m_timeout;
    QByteArray m_bytes;
    std::vector<quint64> m_lineEnds; // in m_bytes
    quint64 m_lines = 0;
    quint64 m_bytesOut = 0;
};

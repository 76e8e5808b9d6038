#include "sender.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

bool PrintFileLines::open(const QString& path)
{
    QFile file(path);
    const bool opened = path == "-"_L1 ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (opened)
        m_text = file.readAll();
    if (!opened || file.error() != QFileDevice::NoError) {
        m_error = file.errorString();
        return false;
    }
    // The suite's printer takes lines of at most 127 bytes; an ESC/POS file
    // (it starts by resetting the printer, ESC @) is counted in its own
    // LF-ended lines, so that a logo's image is never taken apart.
    m_longest = m_text.startsWith("\x1b@") ? m_text.size() : 127;
    return rewind();
}

QByteArrayView PrintFileLines::nextLine()
{
    const qsizetype end = m_text.indexOf('\n', m_next);
    const qsizetype lineEnd = end < 0 ? m_text.size() : end + 1;
    const QByteArrayView line(m_text.constData() + m_next, std::min(lineEnd - m_next, m_longest));
    m_next += line.size();
    return line;
}

bool PrintFileLines::rewind()
{
    m_next = 0;
    return true;
}

bool DestinationSink::write(QByteArrayView line)
{
    m_bytes.append(line);
    m_lineEnds.push_back(quint64(m_bytes.size()));
    return m_bytes.size() < (64 << 10) || flush();
}

bool DestinationSink::flush()
{
    if (m_bytes.isEmpty())
        return true;
    const auto written = m_destination.write(m_bytes.constData(), quint64(m_bytes.size()), m_timeout);
    m_bytesOut += written.bytes;
    m_lines += quint64(std::upper_bound(m_lineEnds.begin(), m_lineEnds.end(), written.bytes) - m_lineEnds.begin());
    m_bytes.clear();
    m_lineEnds.clear();
    return written.complete;
}

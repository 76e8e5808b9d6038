#include "sender.h"

#include <algorithm>
#include <thread>

std::vector<QByteArrayView> splitLines(const QByteArray& text)
{
    // The suite's printer takes lines of at most 127 bytes; an ESC/POS file
    // (it starts by resetting the printer, ESC @) is counted in its own
    // LF-ended lines, so that a logo's image is never taken apart.
    const bool escPos = text.startsWith("\x1b@");
    const qsizetype longest = escPos ? text.size() : 127;
    std::vector<QByteArrayView> lines;
    for (qsizetype start = 0; start < text.size();) {
        const qsizetype end = text.indexOf('\n', start);
        const qsizetype lineEnd = end < 0 ? text.size() : end + 1;
        const qsizetype length = std::min(lineEnd - start, longest);
        lines.emplace_back(text.constData() + start, length);
        start += length;
    }
    return lines;
}

std::optional<std::vector<QByteArrayView>> pageLines(const std::vector<QByteArrayView>& lines,
                                                     const Paging& paging)
{
    if (!paging.page)
        return lines;
    const std::uint64_t before = std::uint64_t(paging.linesPerPage) * *paging.page;
    if (before > 0 && lines.size() <= before)
        return std::nullopt;
    const std::uint64_t end =
        paging.linesPerPage == 0 ? lines.size() : std::min<std::uint64_t>(lines.size(), before + paging.linesPerPage);
    return std::vector<QByteArrayView>(lines.begin() + qsizetype(before), lines.begin() + qsizetype(end));
}

namespace {

// Lines waiting to be written, and how many have gone out.
class Batch
{
public:
    Batch(delivery::Destination& destination, delivery::Milliseconds timeout)
        : m_destination(destination), m_timeout(timeout)
    {
    }

    bool add(QByteArrayView line)
    {
        m_bytes.append(line);
        m_lineEnds.push_back(quint64(m_bytes.size()));
        return m_bytes.size() < (64 << 10) || flush();
    }

    bool flush()
    {
        if (m_bytes.isEmpty())
            return true;
        const auto written = m_destination.write(m_bytes.constData(), quint64(m_bytes.size()), m_timeout);
        m_delivered.bytes += written.bytes;
        m_delivered.lines += quint64(std::upper_bound(m_lineEnds.begin(), m_lineEnds.end(), written.bytes)
                                     - m_lineEnds.begin());
        m_bytes.clear();
        m_lineEnds.clear();
        return written.complete;
    }

    Delivered delivered() const { return m_delivered; }

private:
    delivery::Destination& m_destination;
    delivery::Milliseconds m_timeout;
    QByteArray m_bytes;
    std::vector<quint64> m_lineEnds; // in m_bytes
    Delivered m_delivered;
};

} // namespace

Delivered sendLines(delivery::Destination& destination, const std::vector<QByteArrayView>& lines,
                    const Paging& paging, unsigned copies, delivery::Milliseconds timeout,
                    const std::function<void()>& askForNewSheet)
{
    Batch batch(destination, timeout);
    const auto pause = [&] {
        if (paging.pauseMs == 0)
            return true;
        if (!batch.flush())
            return false;
        std::this_thread::sleep_for(delivery::Milliseconds(paging.pauseMs));
        return true;
    };
    for (unsigned copy = 0; copy < copies; ++copy) {
        // The counter is tested before it counts the line just written, so
        // the first sheet takes one line more than the others: the suite's
        // sheet lengths are set with that count in mind.
        unsigned onSheet = 0;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (!batch.add(lines[i]))
                return batch.delivered();
            if (paging.page) {
                // No pause after the page's last line.
                if (i + 1 < lines.size() && !pause())
                    return batch.delivered();
                continue;
            }
            if (paging.linesPerSheet != 0 && onSheet >= paging.linesPerSheet) {
                if (!batch.flush())
                    return batch.delivered();
                askForNewSheet();
                onSheet = 0;
            }
            if (!pause())
                return batch.delivered();
            ++onSheet;
        }
    }
    Delivered delivered = batch.delivered();
    delivered.complete = batch.flush();
    delivered.lines = batch.delivered().lines;
    delivered.bytes = batch.delivered().bytes;
    return delivered;
}

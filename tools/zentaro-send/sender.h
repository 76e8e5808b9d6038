#pragma once

// The sender: a print file's lines, paged and paced as the command line
// asks, as many copies as asked, to one destination opened for the whole
// run. How the bytes travel is the destination's business.

#include "destination.h"

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <optional>
#include <vector>

struct Paging
{
    unsigned pauseMs = 0; // after each line
    // Ask for a new sheet after every N lines (the first sheet takes one
    // more); 0 never asks.
    unsigned linesPerSheet = 0;
    // Only page `page` (from 0) of `linesPerPage` lines; 0 lines sends the
    // whole file.
    std::optional<unsigned> page;
    unsigned linesPerPage = 0;
};

// The pieces a print file is sent in: a line with its line end, or up to
// 127 bytes of a longer one, as the printers' line buffers take them; an
// ESC/POS file in its LF-ended lines, whatever their length.
std::vector<QByteArrayView> splitLines(const QByteArray& text);

// The lines of the page asked for; nothing when the file ends before it.
std::optional<std::vector<QByteArrayView>> pageLines(const std::vector<QByteArrayView>& lines,
                                                     const Paging& paging);

struct Delivered
{
    bool complete = false;
    quint64 lines = 0;
    quint64 bytes = 0;
};

// Sends `copies` copies of `lines` to an open destination. Lines are
// gathered and written together, except that whatever is gathered goes out
// before every pause and paper prompt, so that the printer has printed up
// to there when it comes.
Delivered sendLines(delivery::Destination& destination, const std::vector<QByteArrayView>& lines,
                    const Paging& paging, unsigned copies, delivery::Milliseconds timeout,
                    const std::function<void()>& askForNewSheet);

#pragma once

// The paged copy: a print file's lines sent one after another to a printer,
// with a pause after each and a new sheet asked for whenever one is full,
// or only one page of them. The rules live here once; where the lines come
// from and how they travel is the business of a line source and a line sink.

#include <QByteArrayView>
#include <QString>

#include <optional>

namespace pagedcopy {

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

// How a copy ended: what failed, in the system's words, and how far it had
// come.
struct Result
{
    enum class Failure {
        None,
        SourceUnreadable,
        DestinationUnopenable,
        WriteFailed,
        NoSuchPage, // the file ends before the page asked for
    };
    Failure failure = Failure::None;
    QString errorText;
    quint64 linesWritten = 0;
    quint64 bytesWritten = 0;

    bool succeeded() const { return failure == Failure::None; }
    static Result failed(Failure failure, const QString& errorText = {})
    {
        Result result;
        result.failure = failure;
        result.errorText = errorText;
        return result;
    }
};

// Where the lines come from.
class LineSource
{
public:
    virtual ~LineSource() = default;
    // The next line with its line end, or the next piece of a longer one;
    // empty at the end.
    virtual QByteArrayView nextLine() = 0;
    virtual bool atEnd() const = 0;
    // Back to the first line, for the next copy.
    virtual bool rewind() = 0;
    virtual QString errorString() const = 0;
};

// Where the lines go. A sink may hold lines back and send them together.
class LineSink
{
public:
    virtual ~LineSink() = default;
    // False once the destination stopped taking data.
    virtual bool write(QByteArrayView line) = 0;
    // Sends whatever is held back: the copy calls it before every pause and
    // paper prompt, so that the printer has printed up to there, and at the
    // end.
    virtual bool flush() = 0;
    // What has gone out: whole lines, and bytes.
    virtual quint64 linesOut() const = 0;
    virtual quint64 bytesOut() const = 0;
    // Why it failed, in the system's words.
    virtual QString errorString() const = 0;
};

// Skips the lines before the page asked for, if one is. NoSuchPage when the
// source ends within them or right after them.
Result skipToPage(LineSource& source, const Paging& paging);

// Sends `copies` copies of the source's lines, or of its page, to the sink,
// rewinding the source between copies.
Result copy(LineSource& source, LineSink& sink, const Paging& paging, unsigned copies = 1);

// The paper prompt: a message box when the running application can show
// one, otherwise a line on standard output answered by a line on standard
// input (or its end).
void askForNewSheet();

} // namespace pagedcopy

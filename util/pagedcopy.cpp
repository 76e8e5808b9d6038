#include "pagedcopy.h"

#include "diagnostics.h"
#include "sleepthread.h"

#include <QApplication>
#include <QMessageBox>

#include <cstdint>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace pagedcopy {

namespace {

using Failure = Result::Failure;

Result outcome(const LineSink& sink, Failure failure, const QString& errorText = {})
{
    Result result = Result::failed(failure, failure == Failure::WriteFailed ? sink.errorString() : errorText);
    result.linesWritten = sink.linesOut();
    result.bytesWritten = sink.bytesOut();
    return result;
}

// What the sink holds back goes out before the pause, so that the printer
// has printed up to there when it comes.
bool pause(LineSink& sink, unsigned milliseconds)
{
    if (milliseconds == 0)
        return true;
    if (!sink.flush())
        return false;
    SleepThread pause(milliseconds);
    return true;
}

// False when the sink failed.
bool copySheets(LineSource& source, LineSink& sink, const Paging& paging)
{
    // The counter is tested before it counts the line just written, so the
    // first sheet takes one line more than the others. The suite's sheet
    // lengths are set with that count in mind: keep it.
    unsigned onSheet = 0;
    while (!source.atEnd()) {
        const QByteArrayView line = source.nextLine();
        if (line.isEmpty())
            break;
        if (!sink.write(line))
            return false;
        if (paging.linesPerSheet != 0 && onSheet >= paging.linesPerSheet) {
            if (!sink.flush())
                return false;
            askForNewSheet();
            onSheet = 0;
        }
        if (!pause(sink, paging.pauseMs))
            return false;
        ++onSheet;
    }
    return true;
}

bool copyPage(LineSource& source, LineSink& sink, const Paging& paging)
{
    const auto pageIsFull = [&paging](unsigned written) {
        return paging.linesPerPage != 0 && written >= paging.linesPerPage;
    };
    for (unsigned written = 0; !pageIsFull(written) && !source.atEnd();) {
        const QByteArrayView line = source.nextLine();
        if (line.isEmpty())
            break;
        if (!sink.write(line))
            return false;
        ++written;
        // No pause after the last line of the page.
        if (!pageIsFull(written) && !source.atEnd() && !pause(sink, paging.pauseMs))
            return false;
    }
    return true;
}

// Consumes standard input up to the end of a line or of the input. Once the
// input has ended, later prompts go on at once.
void waitForLine()
{
    int c;
    do
        c = std::getchar();
    while (c != EOF && c != '\n');
}

// A widgets application on a platform that draws somewhere: the offscreen
// and minimal platforms draw nowhere.
bool canShowMessageBox()
{
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return false;
    const QString platform = QGuiApplication::platformName();
    return platform != "offscreen"_L1 && platform != "minimal"_L1;
}

} // namespace

Result skipToPage(LineSource& source, const Paging& paging)
{
    if (!paging.page)
        return {};
    const std::uint64_t linesBefore = std::uint64_t(paging.linesPerPage) * *paging.page;
    for (std::uint64_t skipped = 0; skipped < linesBefore; ++skipped) {
        (void)source.nextLine();
        if (source.atEnd())
            return Result::failed(Failure::NoSuchPage);
    }
    return {};
}

Result copy(LineSource& source, LineSink& sink, const Paging& paging, unsigned copies)
{
    for (unsigned n = 0; n < copies; ++n) {
        if (n > 0 && !source.rewind())
            return outcome(sink, Failure::SourceUnreadable, source.errorString());
        if (paging.page) {
            const Result skipped = skipToPage(source, paging);
            if (!skipped.succeeded())
                return outcome(sink, skipped.failure);
        }
        if (!(paging.page ? copyPage(source, sink, paging) : copySheets(source, sink, paging)))
            return outcome(sink, Failure::WriteFailed);
    }
    return outcome(sink, sink.flush() ? Failure::None : Failure::WriteFailed);
}

// Someone at a display gets a modal box. Anything else, such as a
// point-of-sale box without one, gets the text on standard output and goes
// on after a line on standard input (or its end).
void askForNewSheet()
{
    const QString caption = QCoreApplication::translate("HLibrary", "PaperWindow");
    const QString text = QCoreApplication::translate("HLibrary", "Insert a new sheet");
    if (canShowMessageBox()) {
        QMessageBox::information(nullptr, caption, text);
        return;
    }
    printDiagnostic({text.toLocal8Bit()});
    waitForLine();
}

} // namespace pagedcopy

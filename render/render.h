#pragma once

#include "xmlreader.h"

#include <QByteArray>
#include <QString>

class PrinterDriver;
class QIODevice;
class ZTConfiguration;

// A handler that sees a request's events before the driver does and hands
// them on to it (the preview's checks sit here).
class RenderWatcher : public XmlContentHandler
{
public:
    // Called once, before the request is read, with the driver the events
    // go on to and the reader that delivers them (which it may set up).
    virtual void watch(PrinterDriver& driver, XmlReader& reader) = 0;
};

// What a render did besides writing the print file.
struct RenderOutcome
{
    // The request was read to its end (not malformed, no unknown method).
    bool complete = false;
    // Where the request stops being well-formed (a line, a byte offset);
    // -1 when it does not.
    qint64 faultLine = -1;
    qint64 faultColumn = -1;
    qint64 faultOffset = -1;
    QByteArray faultReason;
    // The method a request named that is no document: the render stopped there.
    QString unknownMethod;
    // The print file could be opened for writing.
    bool printFileOpened = false;
    // The encoding a request that declares none was read in.
    QByteArray undeclaredEncoding;
    // Memory ran out: the print file ends with what was rendered before.
    bool outOfMemory = false;
    // Characters the printer lacks, one line for the end of the run;
    // empty when none had to be replaced.
    QByteArray replacementSummary;
    // Why the print file lacks bytes that were rendered; empty when every
    // byte reached it.
    QString writeError;
};

// Renders one print request from `in` into the print file `out` (opened for
// writing here unless it is open already) with the settings of
// `configuration` and the label catalogue installed in the application.
// Request text that could end a printed line or start a command is blanked.
RenderOutcome renderRequest(QIODevice& in, QIODevice& out, const ZTConfiguration& configuration,
                            RenderWatcher* watcher = nullptr);

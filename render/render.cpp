#include "render.h"

#include "escposprinterdriver.h"

#include <new>

RenderOutcome renderRequest(QIODevice& in, QIODevice& out, const ZTConfiguration& configuration,
                            RenderWatcher* watcher)
{
    RenderOutcome outcome;
    EscPosPrinterDriver driver(out, configuration);
    XmlContentHandler& first = watcher ? static_cast<XmlContentHandler&>(*watcher) : driver;
    XmlReader reader(first);
    // Request text must not be able to end a printed line or start a command.
    reader.setBlankControlCharacters(true);
    if (watcher)
        watcher->watch(driver, reader);
    try {
        outcome.complete = reader.parse(&in);
    } catch (const std::bad_alloc&) {
        outcome.outOfMemory = true;
    }
    // The stream writes straight to the device, with nothing to allocate:
    // what was rendered reaches the print file even after memory ran out.
    driver.flush();
    outcome.faultLine = reader.faultLine();
    outcome.faultOffset = reader.faultOffset();
    outcome.undeclaredEncoding = reader.undeclaredEncoding();
    outcome.replacementSummary = driver.replacementSummary();
    if (driver.writeFailed())
        outcome.writeError = driver.writeError();
    return outcome;
}

#include "render.h"

#include "escposprinterdriver.h"

#include <new>
#include <optional>

RenderOutcome renderRequest(QIODevice& in, QIODevice& out, const ZTConfiguration& configuration,
                            RenderWatcher* watcher)
{
    RenderOutcome outcome;
    // Memory may run out anywhere from here on, even before the first
    // element: whatever was made is kept, and what was rendered is written.
    std::optional<EscPosPrinterDriver> driver;
    std::optional<XmlReader> reader;
    try {
        driver.emplace(out, configuration);
        reader.emplace(watcher ? static_cast<XmlContentHandler&>(*watcher) : *driver);
        // Request text must not be able to end a printed line or start a command.
        reader->setBlankControlCharacters(true);
        if (watcher)
            watcher->watch(*driver, *reader);
        outcome.complete = reader->parse(&in);
    } catch (const std::bad_alloc&) {
        outcome.outOfMemory = true;
    }
    outcome.printFileOpened = out.isOpen();
    if (!driver || !reader)
        return outcome;
    // The stream writes straight to the device, with nothing to allocate.
    driver->flush();
    outcome.faultLine = reader->faultLine();
    outcome.faultColumn = reader->faultColumn();
    outcome.faultOffset = reader->faultOffset();
    try {
        outcome.unknownMethod = driver->unknownMethod();
        outcome.faultReason = reader->faultReason();
        outcome.undeclaredEncoding = reader->undeclaredEncoding();
        outcome.replacementSummary = driver->replacementSummary();
        if (driver->writeFailed())
            outcome.writeError = driver->writeError();
    } catch (const std::bad_alloc&) {
        outcome.outOfMemory = true;
    }
    return outcome;
}

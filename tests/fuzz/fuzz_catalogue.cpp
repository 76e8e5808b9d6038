// Feeds arbitrary bytes as a compiled label catalogue: whatever the check
// accepts must be safe to translate with.
#include "catalogue.h"

#include <QTranslator>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArrayView bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    if (!isSoundCatalogue(bytes))
        return 0;
    QTranslator translator;
    if (!translator.load(reinterpret_cast<const uchar*>(data), int(size)))
        return 0;
    static const char* const labels[] = {"TOTAL", "Num", "Description", "Price", "Amount",
                                         "Serial Number: ", "Payment", "", "x"};
    for (const char* label : labels)
        (void)translator.translate("PrinterDriver", label);
    // Texts of every length and first byte reach every hash bucket.
    for (int length = 0; length < 8; ++length)
        for (int first = 0; first < 256; first += 7)
            (void)translator.translate("PrinterDriver", QByteArray(length + 1, char(first)).first(length).constData());
    return 0;
}

// Feeds arbitrary bytes as a print request through the reader, the driver
// and its devices (receipts and sold items in ESC/POS, the others in command
// text), with a fixed configuration, and checks the
// prefix rule: a request that breaks off at a fault prints exactly what the
// same request cut just before the fault prints.
#include "printerdriver.h"
#include "render.h"
#include "ztconfiguration.h"

#include <QBuffer>
#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

const char configuration[] = R"(zentaro : {
    doc : { quantityFieldWidth = 3; priceFieldWidth = 8; totalPriceFieldWidth = 9; paperWidth = 40;
            topMargin = 2; printGeometry = "true"; printHeader = "true"; printCompany = "true";
            printCustomer = "true"; printBillingAddress = "true"; printDeliveryAddress = "true";
            printTelephone = "true"; printDate = "true"; printTime = "true"; printTable = "true";
            printWaiter = "true"; printNote = "true"; printCredit = "true"; };
    receiptdoc : { quantityFieldWidth = 3; priceFieldWidth = 8; totalPriceFieldWidth = 9;
            paperWidth = 40; printHeader = "true"; printCustomer = "true"; printLicenseNumber = "true";
            printFiscalCode = "true"; dialect = "escpos"; codePage = "CP858"; openCashDrawer = "true"; };
    invoicedoc : { quantityFieldWidth = 30; priceFieldWidth = 8; totalPriceFieldWidth = 9;
            paperWidth = 20; printCustomer = "true"; };
    fiscaldoc : { descriptionWidth = 12; };
    reportdoc : { paperWidth = 10; priceFieldWidth = 8; };
    solddoc : { quantityFieldWidth = -5; paperWidth = 40; dialect = "escpos"; codePage = "ISO-8859-15"; };
};
)";

// Everything the driver prints for the elements, leaving out the closing
// section that only a complete document gets.
class WithoutEnd : public RenderWatcher
{
public:
    explicit WithoutEnd(const QByteArray& undeclaredEncoding)
        : undeclaredEncoding(undeclaredEncoding)
    {
    }
    void watch(PrinterDriver& renderer, XmlReader& reader) override
    {
        driver = &renderer;
        reader.setUndeclaredEncoding(undeclaredEncoding);
    }
    bool startDocument() override { return driver->startDocument(); }
    bool startElement(const QString& ns, const QString& local, const QString& qName,
                      const XmlAttributes& atts) override
    {
        return driver->startElement(ns, local, qName, atts);
    }

private:
    QByteArray undeclaredEncoding;
    PrinterDriver* driver = nullptr;
};

struct Printed
{
    QByteArray bytes;
    qint64 faultOffset;
    QByteArray encoding;
};

Printed print(QByteArray request, const QByteArray& undeclaredEncoding)
{
    static const auto settings = ZTConfiguration::fromText(configuration);
    QBuffer input(&request);
    input.open(QIODevice::ReadOnly);
    QByteArray output;
    QBuffer printFile(&output);
    WithoutEnd handler(undeclaredEncoding);
    const RenderOutcome outcome = renderRequest(input, printFile, *settings, &handler);
    return {output, outcome.faultOffset, outcome.undeclaredEncoding};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray request(reinterpret_cast<const char*>(data), qsizetype(size));
    const Printed whole = print(request, {});
    if (whole.faultOffset < 0)
        return 0;
    const Printed cut = print(request.first(whole.faultOffset), whole.encoding);
    if (cut.bytes != whole.bytes)
        std::abort();
    return 0;
}

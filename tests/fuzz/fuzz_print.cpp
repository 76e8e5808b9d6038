// Feeds arbitrary bytes as a print request through the driver and the
// command-text device, with a fixed configuration.
#include "companyprinterdriver.h"
#include "xmlreader.h"
#include "ztconfiguration.h"

#include <QBuffer>
#include <QByteArray>

#include <cstddef>
#include <cstdint>
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
            printFiscalCode = "true"; };
    invoicedoc : { quantityFieldWidth = 30; priceFieldWidth = 8; totalPriceFieldWidth = 9;
            paperWidth = 20; printCustomer = "true"; };
    fiscaldoc : { descriptionWidth = 12; };
    reportdoc : { paperWidth = 10; priceFieldWidth = 8; };
    solddoc : { quantityFieldWidth = -5; paperWidth = 40; };
};
)";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const auto settings = ZTConfiguration::fromText(configuration);

    QByteArray request(reinterpret_cast<const char*>(data), qsizetype(size));
    QBuffer input(&request);
    input.open(QIODevice::ReadOnly);

    QByteArray output;
    CompanyPrinterDriver driver(std::make_unique<QBuffer>(&output), settings.get());
    parseXml(&input, driver);
    driver.flush();
    return 0;
}

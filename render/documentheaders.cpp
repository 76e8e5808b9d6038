// The top of a document: margins, printer, free headers, company, document
// numbers, order information and the customer block.
#include "printerdriver.h"
#include "ztconfiguration.h"

using namespace Qt::StringLiterals;

void PrinterDriver::labelLine(const QString& label, QStringView text)
{
    print(1, label);
    println(1, text.toString());
}

void PrinterDriver::printGeometry(const XmlAttributes&)
{
    if (!settings.printGeometry)
        return;
    // A runaway margin would only fill the disk.
    const int topMargin = readWidthSetting(*config, docPath + SettingKey::topMargin, &misread);
    for (int i = 0; i < topMargin; ++i)
        println(QString());
}

void PrinterDriver::printPrinterInfo()
{
    // Centring stays on afterwards: the next header decides the alignment.
    setCenterJustify();
    println(printerInfo);
    printSeparatorLine();
}

void PrinterDriver::storePrinter(const XmlAttributes& atts)
{
    printerInfo = atts.value("name"_L1).toString();
    charsize = atts.value("charsize"_L1).toString();
    ipaddress = atts.value("ipaddress"_L1).toString();
    port = atts.value("port"_L1).toString();
    initPrinter();
}

// The free header lines, then the printer's name whatever the switch.
void PrinterDriver::printHeaderLines(const XmlAttributes& atts)
{
    printHeaders(atts);
    printPrinterInfo();
}

void PrinterDriver::printLogoElement(const XmlAttributes&)
{
    printLogo();
}

void PrinterDriver::printHeaders(const XmlAttributes& atts)
{
    if (!settings.printHeader)
        return;
    // Free header lines: one per attribute, in the order written; names are not read.
    for (const XmlAttribute& attribute : atts)
        println(attribute.value().toString());
    printSeparatorLine();
}

void PrinterDriver::printCompanyHeader(const XmlAttributes& atts)
{
    if (!settings.printCompany)
        return;
    setCharSize();
    setCenterJustify();
    for (const XmlAttribute& attribute : atts)
        println(attribute.value().toString());
    setCharSize();
    printSeparatorLine();
}

void PrinterDriver::printReceiptHeader(const XmlAttributes& atts)
{
    println(1, tr("Serial Number: ") + atts.value("serialnumber"_L1).toString());
    printSeparatorLine();
}

void PrinterDriver::printInvoiceHeader(const XmlAttributes& atts)
{
    labelLine(tr("Invoice Number:"), atts.value("serialnumber"_L1));
    printSeparatorLine();
}

void PrinterDriver::printDeliveryHeader(const XmlAttributes& atts)
{
    labelLine(tr("Delivery Number:"), atts.value("serialnumber"_L1));
    printSeparatorLine();
}

void PrinterDriver::printOrderInfo(const XmlAttributes& atts)
{
    setCharSize();
    if (settings.printDate)
        labelLine(tr("Date:"), atts.value("date"_L1));
    if (settings.printTime)
        labelLine(tr("Time:"), atts.value("time"_L1));
    if (settings.printTable)
        labelLine(tr("Table:"), atts.value("table"_L1));
    if (settings.printWaiter)
        labelLine(tr("Waiter:"), atts.value("waiter"_L1));
    if (settings.printNote)
        labelLine(tr("Note:"), atts.value("note"_L1));
    if (settings.printCredit) {
        credit = atts.value("credit"_L1).toString();
        labelLine(tr("Credit:"), credit);
    }
    printSeparatorLine();
}

namespace {

// Prints the comma-separated parts of an address, each trimmed; the first
// empty part ends the address, though a part of blanks only does not.
void printAddress(PrinterDriver& driver, QStringView address)
{
    for (QStringView part : address.tokenize(u',')) {
        if (part.isEmpty())
            return;
        driver.println(1, part.trimmed().toString());
    }
}

} // namespace

void PrinterDriver::printCustomerHeader(const XmlAttributes& atts)
{
    if (!settings.printCustomer)
        return;
    println(tr("CUSTOMER"));
    println(1, atts.value("name"_L1).toString());
    if (settings.printBillingAddress)
        printAddress(*this, atts.value("billingaddress"_L1));
    if (settings.printDeliveryAddress)
        printAddress(*this, atts.value("deliveryaddress"_L1));
    if (settings.printTelephone)
        labelLine(tr("Telephone:"), atts.value("telephone"_L1));
    if (settings.printLicenseNumber)
        labelLine(tr("License Number:"), atts.value("licensenumber"_L1));
    if (settings.printFiscalCode)
        labelLine(tr("Fiscal Code:"), atts.value("fiscalcode"_L1));
    printSeparatorLine();
}

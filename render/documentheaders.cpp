// The top of a document: margins, printer, free headers, company, document
// numbers, order information and the customer block.
#include "printerdriver.h"

void PrinterDriver::labelLine(const QString& label, const QString& text)
{
    print(1, label);
    println(1, text);
}

void PrinterDriver::printGeometry(const QXmlStreamAttributes&)
{
    if (!settings.printGeometry)
        return;
    // A runaway margin would only fill the disk.
    const int topMargin = boundedSetting(QStringLiteral("topMargin"));
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

void PrinterDriver::printHeaders(const QXmlStreamAttributes& atts)
{
    if (!settings.printHeader)
        return;
    // Free header lines: one per attribute, in the order written; names are not read.
    for (const QXmlStreamAttribute& attribute : atts)
        println(attribute.value().toString());
    printSeparatorLine();
}

void PrinterDriver::printCompanyHeader(const QXmlStreamAttributes& atts)
{
    if (!settings.printCompany)
        return;
    setCharSize();
    setCenterJustify();
    for (const QXmlStreamAttribute& attribute : atts)
        println(attribute.value().toString());
    setCharSize();
    printSeparatorLine();
}

void PrinterDriver::printReceiptHeader(const QXmlStreamAttributes& atts)
{
    println(1, tr("Serial Number: ") + value(atts, QLatin1StringView("serialnumber")));
    printSeparatorLine();
}

void PrinterDriver::printInvoiceHeader(const QXmlStreamAttributes& atts)
{
    labelLine(tr("Invoice Number:"), value(atts, QLatin1StringView("serialnumber")));
    printSeparatorLine();
}

void PrinterDriver::printDeliveryHeader(const QXmlStreamAttributes& atts)
{
    labelLine(tr("Delivery Number:"), value(atts, QLatin1StringView("serialnumber")));
    printSeparatorLine();
}

void PrinterDriver::printOrderInfo(const QXmlStreamAttributes& atts)
{
    setCharSize();
    if (settings.printDate)
        labelLine(tr("Date:"), value(atts, QLatin1StringView("date")));
    if (settings.printTime)
        labelLine(tr("Time:"), value(atts, QLatin1StringView("time")));
    if (settings.printTable)
        labelLine(tr("Table:"), value(atts, QLatin1StringView("table")));
    if (settings.printWaiter)
        labelLine(tr("Waiter:"), value(atts, QLatin1StringView("waiter")));
    if (settings.printNote)
        labelLine(tr("Note:"), value(atts, QLatin1StringView("note")));
    if (settings.printCredit) {
        credit = value(atts, QLatin1StringView("credit"));
        labelLine(tr("Credit:"), credit);
    }
    printSeparatorLine();
}

namespace {

// Prints the comma-separated parts of an address, each trimmed; the first
// empty part ends the address, though a part of blanks only does not.
void printAddress(PrinterDriver& driver, const QString& address)
{
    for (const QString& part : address.split(QLatin1Char(','))) {
        if (part.isEmpty())
            return;
        driver.println(1, part.trimmed());
    }
}

} // namespace

void PrinterDriver::printCustomerHeader(const QXmlStreamAttributes& atts)
{
    if (!settings.printCustomer)
        return;
    println(tr("CUSTOMER"));
    println(1, value(atts, QLatin1StringView("name")));
    if (settings.printBillingAddress)
        printAddress(*this, value(atts, QLatin1StringView("billingaddress")));
    if (settings.printDeliveryAddress)
        printAddress(*this, value(atts, QLatin1StringView("deliveryaddress")));
    if (settings.printTelephone)
        labelLine(tr("Telephone:"), value(atts, QLatin1StringView("telephone")));
    if (settings.printLicenseNumber)
        labelLine(tr("License Number:"), value(atts, QLatin1StringView("licensenumber")));
    if (settings.printFiscalCode)
        labelLine(tr("Fiscal Code:"), value(atts, QLatin1StringView("fiscalcode")));
    printSeparatorLine();
}

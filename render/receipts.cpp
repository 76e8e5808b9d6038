// Receipts, invoices, their abstract forms and fiscal receipts.
#include "printerdriver.h"
#include "rowlayout.h"

using namespace Qt::StringLiterals;
using namespace RowLayout;

void PrinterDriver::printReceiptItem(const XmlAttributes& atts)
{
    printPricedItem(atts, qxdpt);
}

void PrinterDriver::printReceiptTotal(const XmlAttributes& atts)
{
    println(QString());
    printTotalLine(tr("TOTAL"), atts.value("price"_L1));
}

void PrinterDriver::printNotPaid(const XmlAttributes& atts)
{
    println(QString());
    println(tr("    Amount not paid: ") + atts.value("price"_L1).toString());
}

void PrinterDriver::printAbstractNotPaid(const XmlAttributes& atts)
{
    println(QString());
    // This title is printed as it stands, in every language.
    println(u"   Corrispettivo non pagato: "_s + atts.value("price"_L1).toString());
}

void PrinterDriver::printInvoiceItem(const XmlAttributes& atts)
{
    printPricedItem(atts, qdpt);
}

void PrinterDriver::printPricedItem(const XmlAttributes& atts, Layout layout)
{
    printItemColumnsHeader(true);
    printRow(atts, {"number"_L1, "name"_L1, "price"_L1, "totalPrice"_L1}, dot, layout);
}

// A dotted leader from the title to the amount in the total column.
void PrinterDriver::printTotalLine(const QString& label, QStringView amount)
{
    println(descriptionRow({}, label, {}, amount, dot, qdpt));
}

void PrinterDriver::printInvoiceTotals(const XmlAttributes& atts)
{
    setBold();
    println(QString());
    printTotalLine(tr("Taxable"), atts.value("taxable"_L1));
    printTotalLine(tr("TaxRate"), atts.value("taxrate"_L1));
    printTotalLine(tr("Tax"), atts.value("tax"_L1));
    printTotalLine(tr("TOTAL"), atts.value("total"_L1));
    setCharSize();
}

void PrinterDriver::printAbstractItem(const XmlAttributes& atts)
{
    // An abstract line carries a count and an amount; the amount stands in
    // the total column under the title "Price", the unit price stays dotted.
    printItemColumnsHeader(false);
    printRow(atts, {"number"_L1, "name"_L1, {}, "price"_L1}, dot, qxdpt);
}

void PrinterDriver::printFiscalItem(const XmlAttributes& atts)
{
    // The name is cut as the printer prints it: by characters, never inside one.
    const int width = settings.descriptionWidth;
    const QString name = printable(atts.value("name"_L1));
    printRowFiscal(atts.value("department"_L1).toString(), atts.value("number"_L1).toString(),
                   width < 0 ? name : printedLeft(name, width).toString(), atts.value("price"_L1).toString());
}

void PrinterDriver::printAbstractFiscalItem(const XmlAttributes& atts)
{
    printRowFiscal(atts.value("department"_L1).toString(), u"1"_s, atts.value("name"_L1).toString(),
                   atts.value("price"_L1).toString());
}

void PrinterDriver::printFiscalPayments(const XmlAttributes& atts)
{
    // The payment form writes only for "totals", so a fiscal receipt
    // carries its item lines alone; the printer sums them itself.
    printRowFiscal(u"total"_s, atts);
}

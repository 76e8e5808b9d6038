// Receipts, invoices, their abstract forms, fiscal receipts and delivery notes.
#include "printerdriver.h"
#include "rowlayout.h"

using namespace Qt::StringLiterals;
using namespace RowLayout;

void PrinterDriver::printFullOrderReceipt(const QString& qName, const XmlAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (isName(qName, "customer"_L1)) {
        printCustomerHeader(atts);
    } else if (isName(qName, "receipe"_L1)) {
        printPricedItem(atts, qxdpt);
    } else if (isName(qName, "total"_L1)) {
        println(QString());
        printTotalLine(tr("TOTAL"), atts.value("price"_L1));
    } else if (isName(qName, "notPaid"_L1)) {
        println(QString());
        println(tr("    Amount not paid: ") + atts.value("price"_L1).toString());
    }
}

void PrinterDriver::printFullOrderInvoice(const QString& qName, const XmlAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (isName(qName, "customer"_L1)) {
        printCustomerHeader(atts);
    } else if (isName(qName, "receipe"_L1)) {
        printPricedItem(atts, qdpt);
    } else if (isName(qName, "totals"_L1)) {
        printInvoiceTotals(atts);
    }
}

void PrinterDriver::printPricedItem(const XmlAttributes& atts, QStringView layout)
{
    printItemColumnsHeader(true);
    println(descriptionRow(atts.value("number"_L1), atts.value("name"_L1), atts.value("price"_L1),
                           atts.value("totalPrice"_L1), dot, layout));
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
    println(descriptionRow(atts.value("number"_L1), atts.value("name"_L1), {},
                           atts.value("price"_L1), dot, qxdpt));
}

void PrinterDriver::printAbstractOrderReceipt(const QString& qName,
                                              const XmlAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (isName(qName, "receipe_type"_L1)) {
        printAbstractItem(atts);
    } else if (isName(qName, "total"_L1)) {
        println(QString());
        printTotalLine(tr("TOTAL"), atts.value("price"_L1));
    } else if (isName(qName, "notPaid"_L1)) {
        println(QString());
        // This title is printed as it stands, in every language.
        println(u"   Corrispettivo non pagato: "_s + atts.value("price"_L1).toString());
    }
}

void PrinterDriver::printAbstractOrderInvoice(const QString& qName,
                                              const XmlAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (isName(qName, "customer"_L1))
        printCustomerHeader(atts);
    else if (isName(qName, "receipe_type"_L1))
        printAbstractItem(atts);
    else if (isName(qName, "totals"_L1))
        printInvoiceTotals(atts);
}

void PrinterDriver::printFullOrderFiscal(const QString& qName, const XmlAttributes& atts)
{
    // Read for every element, so that the setting of the document in force applies.
    int descriptionWidth = boundedSetting("descriptionWidth"_L1);
    if (descriptionWidth == 0)
        descriptionWidth = int(getPaperWidth());

    if (isName(qName, "receipe"_L1)) {
        // The name is cut as the printer prints it: by characters, never inside one.
        const QString name = printable(atts.value("name"_L1));
        printRowFiscal(atts.value("department"_L1).toString(), atts.value("number"_L1).toString(),
                       descriptionWidth < 0 ? name : printedLeft(name, descriptionWidth).toString(),
                       atts.value("price"_L1).toString());
    } else if (isName(qName, "total"_L1)) {
        // The payment form writes only for "totals", so a fiscal receipt
        // carries its item lines alone; the printer sums them itself.
        printRowFiscal(qName, atts);
    }
}

void PrinterDriver::printAbstractOrderFiscal(const QString& qName,
                                             const XmlAttributes& atts)
{
    if (isName(qName, "receipe_type"_L1)) {
        printRowFiscal(atts.value("department"_L1).toString(), u"1"_s,
                       atts.value("name"_L1).toString(), atts.value("price"_L1).toString());
    } else if (isName(qName, "total"_L1)) {
        printRowFiscal(qName, atts);
    }
}

void PrinterDriver::printFullOrderDelivery(const QString& qName, const XmlAttributes& atts)
{
    // A delivery note's body is an order ticket.
    if (isName(qName, "customer"_L1))
        printCustomerHeader(atts);
    else
        printPartialOrder(qName, atts);
}

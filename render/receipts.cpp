// Receipts, invoices, their abstract forms, fiscal receipts and delivery notes.
#include "printerdriver.h"

namespace {

const QChar dot(QLatin1Char('.'));
const QString qdpt = QStringLiteral("qdpt");
const QString qxdpt = QStringLiteral("qxdpt");

} // namespace

void PrinterDriver::printFullOrderReceipt(const QString& qName, const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (qName == QLatin1StringView("customer")) {
        printCustomerHeader(atts);
    } else if (qName == QLatin1StringView("receipe")) {
        printPricedItem(atts, qxdpt);
    } else if (qName == QLatin1StringView("total")) {
        println(QString());
        printTotalLine(tr("TOTAL"), atts.value(QLatin1StringView("price")));
    } else if (qName == QLatin1StringView("notPaid")) {
        println(QString());
        println(tr("    Amount not paid: ") + value(atts, QLatin1StringView("price")));
    }
}

void PrinterDriver::printFullOrderInvoice(const QString& qName, const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (qName == QLatin1StringView("customer")) {
        printCustomerHeader(atts);
    } else if (qName == QLatin1StringView("receipe")) {
        printPricedItem(atts, qdpt);
    } else if (qName == QLatin1StringView("totals")) {
        printInvoiceTotals(atts);
    }
}

void PrinterDriver::printPricedItem(const QXmlStreamAttributes& atts, QStringView layout)
{
    printItemColumnsHeader(true);
    println(descriptionRow(atts.value(QLatin1StringView("number")),
                           atts.value(QLatin1StringView("name")),
                           atts.value(QLatin1StringView("price")),
                           atts.value(QLatin1StringView("totalPrice")), dot, layout));
}

// A dotted leader from the title to the amount in the total column.
void PrinterDriver::printTotalLine(const QString& label, QStringView amount)
{
    println(descriptionRow(QString(), label, QString(), amount, dot, qdpt));
}

void PrinterDriver::printInvoiceTotals(const QXmlStreamAttributes& atts)
{
    setBold();
    println(QString());
    printTotalLine(tr("Taxable"), atts.value(QLatin1StringView("taxable")));
    printTotalLine(tr("TaxRate"), atts.value(QLatin1StringView("taxrate")));
    printTotalLine(tr("Tax"), atts.value(QLatin1StringView("tax")));
    printTotalLine(tr("TOTAL"), atts.value(QLatin1StringView("total")));
    setCharSize();
}

void PrinterDriver::printAbstractItem(const QXmlStreamAttributes& atts)
{
    // An abstract line carries a count and an amount; the amount stands in
    // the total column under the title "Price", the unit price stays dotted.
    printItemColumnsHeader(false);
    println(descriptionRow(value(atts, QLatin1StringView("number")),
                           value(atts, QLatin1StringView("name")), QString(),
                           value(atts, QLatin1StringView("price")), dot, qxdpt));
}

void PrinterDriver::printAbstractOrderReceipt(const QString& qName,
                                              const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (qName == QLatin1StringView("receipe_type")) {
        printAbstractItem(atts);
    } else if (qName == QLatin1StringView("total")) {
        println(QString());
        printTotalLine(tr("TOTAL"), atts.value(QLatin1StringView("price")));
    } else if (qName == QLatin1StringView("notPaid")) {
        println(QString());
        // This title is printed as it stands, in every language.
        println(QStringLiteral("   Corrispettivo non pagato: ")
                + value(atts, QLatin1StringView("price")));
    }
}

void PrinterDriver::printAbstractOrderInvoice(const QString& qName,
                                              const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (qName == QLatin1StringView("customer"))
        printCustomerHeader(atts);
    else if (qName == QLatin1StringView("receipe_type"))
        printAbstractItem(atts);
    else if (qName == QLatin1StringView("totals"))
        printInvoiceTotals(atts);
}

void PrinterDriver::printFullOrderFiscal(const QString& qName, const QXmlStreamAttributes& atts)
{
    // Read for every element, so that the setting of the document in force applies.
    int descriptionWidth = boundedSetting(QStringLiteral("descriptionWidth"));
    if (descriptionWidth == 0)
        descriptionWidth = int(getPaperWidth());

    if (qName == QLatin1StringView("receipe")) {
        const QString name = value(atts, QLatin1StringView("name"));
        printRowFiscal(value(atts, QLatin1StringView("department")),
                       value(atts, QLatin1StringView("number")),
                       descriptionWidth < 0 ? name : name.left(descriptionWidth),
                       value(atts, QLatin1StringView("price")));
    } else if (qName == QLatin1StringView("total")) {
        // The payment form writes only for "totals", so a fiscal receipt
        // carries its item lines alone; the printer sums them itself.
        printRowFiscal(qName, atts);
    }
}

void PrinterDriver::printAbstractOrderFiscal(const QString& qName,
                                             const QXmlStreamAttributes& atts)
{
    if (qName == QLatin1StringView("receipe_type")) {
        printRowFiscal(value(atts, QLatin1StringView("department")), QStringLiteral("1"),
                       value(atts, QLatin1StringView("name")),
                       value(atts, QLatin1StringView("price")));
    } else if (qName == QLatin1StringView("total")) {
        printRowFiscal(qName, atts);
    }
}

void PrinterDriver::printFullOrderDelivery(const QString& qName, const QXmlStreamAttributes& atts)
{
    // A delivery note's body is an order ticket.
    if (qName == QLatin1StringView("customer"))
        printCustomerHeader(atts);
    else
        printPartialOrder(qName, atts);
}

// Order tickets (the kitchen ticket and the priced pre-bill), and the header
// elements every list document shares.
#include "printerdriver.h"
#include "rowlayout.h"

using namespace Qt::StringLiterals;

using namespace RowLayout;

namespace {

// A variant changes the item before it: "+" adds, "-" removes, any other
// quantity is printed as written.
QString variantText(QStringView quantity, QStringView name)
{
    // Read like every number of a request: text that is not a number is 0.
    const double count = quantity.toDouble();
    QString text;
    if (count == -1 || count == 0)
        text = u"-"_s;
    else if (count == 1)
        text = u"+"_s;
    else
        text = quantity.toString();
    return text.append(u' ').append(name);
}

} // namespace

bool PrinterDriver::printSections(const QString& name, const XmlAttributes& atts)
{
    if (name == "printers"_L1) {
        printerInfo = atts.value("name"_L1).toString();
        charsize = atts.value("charsize"_L1).toString();
        ipaddress = atts.value("ipaddress"_L1).toString();
        port = atts.value("port"_L1).toString();
        initPrinter();
    } else if (name == "geometry"_L1) {
        printGeometry(atts);
    } else if (name == "headers"_L1) {
        printHeaders(atts);
        printPrinterInfo();
    } else if (name == "logo"_L1) {
        printLogo();
    } else if (name == "company"_L1) {
        printCompanyHeader(atts);
    } else if (name == "receipt"_L1) {
        printReceiptHeader(atts);
    } else if (name == "invoice"_L1) {
        printInvoiceHeader(atts);
    } else if (name == "delivery"_L1) {
        printDeliveryHeader(atts);
    } else if (name == "orderinfo"_L1) {
        printOrderInfo(atts);
    } else {
        return false;
    }
    return true;
}

void PrinterDriver::printFullOrder(const QString& qName, const XmlAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (qName == "customer"_L1) {
        printCustomerHeader(atts);
    } else if (qName == "receipe"_L1) {
        // Items whose name begins with "=" are internal and never printed.
        if (atts.value("name"_L1).startsWith(u'='))
            return;
        printPricedItem(atts, qdpt);
    } else if (qName == "variant"_L1) {
        println(descriptionRow(atts.value("number"_L1),
                               variantText(atts.value("quantity"_L1), atts.value("name"_L1)),
                               atts.value("price"_L1), atts.value("totalPrice"_L1), dot, qdpt));
    } else if (qName == "total"_L1) {
        println(QString());
        setBold();
        printTotalLine(tr("TOTAL"), atts.value("price"_L1));
    }
}

void PrinterDriver::printPartialOrder(const QString& qName, const XmlAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    const auto ticketLine = [&](QStringView name) {
        println(descriptionRow(atts.value("number"_L1), name, {}, {}, dot, qd));
    };
    if (qName == "customer"_L1) {
        printCustomerHeader(atts);
    } else if (qName == "receipe"_L1) {
        setCharSize();
        ticketLine(atts.value("name"_L1));
    } else if (qName == "otherreceipe"_L1) {
        setCharSize(1);
        ticketLine(atts.value("name"_L1));
    } else if (qName == "variant"_L1) {
        ticketLine(variantText(atts.value("quantity"_L1), atts.value("name"_L1)));
    }
}

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

namespace {

// The header elements every list document shares, and what each prints.
struct Section
{
    QLatin1StringView name;
    void (*print)(PrinterDriver& driver, const XmlAttributes& atts);
};

const Section sections[] = {
    {"printers"_L1, [](PrinterDriver& d, const XmlAttributes& atts) { d.storePrinter(atts); }},
    {"geometry"_L1, [](PrinterDriver& d, const XmlAttributes& atts) { d.printGeometry(atts); }},
    {"headers"_L1,
     [](PrinterDriver& d, const XmlAttributes& atts) {
         d.printHeaders(atts);
         d.printPrinterInfo();
     }},
    {"logo"_L1, [](PrinterDriver& d, const XmlAttributes&) { d.printLogo(); }},
    {"company"_L1, [](PrinterDriver& d, const XmlAttributes& atts) { d.printCompanyHeader(atts); }},
    {"receipt"_L1, [](PrinterDriver& d, const XmlAttributes& atts) { d.printReceiptHeader(atts); }},
    {"invoice"_L1, [](PrinterDriver& d, const XmlAttributes& atts) { d.printInvoiceHeader(atts); }},
    {"delivery"_L1, [](PrinterDriver& d, const XmlAttributes& atts) { d.printDeliveryHeader(atts); }},
    {"orderinfo"_L1, [](PrinterDriver& d, const XmlAttributes& atts) { d.printOrderInfo(atts); }},
};

} // namespace

bool PrinterDriver::printSections(const QString& name, const XmlAttributes& atts)
{
    for (const Section& section : sections) {
        if (isName(name, section.name)) {
            section.print(*this, atts);
            return true;
        }
    }
    return false;
}

void PrinterDriver::storePrinter(const XmlAttributes& atts)
{
    printerInfo = atts.value("name"_L1).toString();
    charsize = atts.value("charsize"_L1).toString();
    ipaddress = atts.value("ipaddress"_L1).toString();
    port = atts.value("port"_L1).toString();
    initPrinter();
}

void PrinterDriver::printFullOrder(const QString& qName, const XmlAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (isName(qName, "customer"_L1)) {
        printCustomerHeader(atts);
    } else if (isName(qName, "receipe"_L1)) {
        // Items whose name begins with "=" are internal and never printed.
        if (atts.value("name"_L1).startsWith(u'='))
            return;
        printPricedItem(atts, qdpt);
    } else if (isName(qName, "variant"_L1)) {
        println(descriptionRow(atts.value("number"_L1),
                               variantText(atts.value("quantity"_L1), atts.value("name"_L1)),
                               atts.value("price"_L1), atts.value("totalPrice"_L1), dot, qdpt));
    } else if (isName(qName, "total"_L1)) {
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
    if (isName(qName, "customer"_L1)) {
        printCustomerHeader(atts);
    } else if (isName(qName, "receipe"_L1)) {
        setCharSize();
        ticketLine(atts.value("name"_L1));
    } else if (isName(qName, "otherreceipe"_L1)) {
        setCharSize(1);
        ticketLine(atts.value("name"_L1));
    } else if (isName(qName, "variant"_L1)) {
        ticketLine(variantText(atts.value("quantity"_L1), atts.value("name"_L1)));
    }
}

// Order tickets (the kitchen ticket and the priced pre-bill), and the header
// elements every list document shares.
#include "printerdriver.h"

namespace {

// A variant changes the item before it: "+" adds, "-" removes, any other
// quantity is printed as written.
QString variantText(const QString& quantity, const QString& name)
{
    // Read like every number of a request: text that is not a number is 0.
    const double count = quantity.toDouble();
    QString sign;
    if (count == -1 || count == 0)
        sign = QStringLiteral("-");
    else if (count == 1)
        sign = QStringLiteral("+");
    else
        sign = quantity;
    return sign + QLatin1Char(' ') + name;
}

} // namespace

bool PrinterDriver::printSections(const QString& name, const QXmlStreamAttributes& atts)
{
    if (name == QLatin1StringView("printers")) {
        printerInfo = value(atts, QLatin1StringView("name"));
        charsize = value(atts, QLatin1StringView("charsize"));
        ipaddress = value(atts, QLatin1StringView("ipaddress"));
        port = value(atts, QLatin1StringView("port"));
        initPrinter();
    } else if (name == QLatin1StringView("geometry")) {
        printGeometry(atts);
    } else if (name == QLatin1StringView("headers")) {
        printHeaders(atts);
        printPrinterInfo();
    } else if (name == QLatin1StringView("logo")) {
        printLogo();
    } else if (name == QLatin1StringView("company")) {
        printCompanyHeader(atts);
    } else if (name == QLatin1StringView("receipt")) {
        printReceiptHeader(atts);
    } else if (name == QLatin1StringView("invoice")) {
        printInvoiceHeader(atts);
    } else if (name == QLatin1StringView("delivery")) {
        printDeliveryHeader(atts);
    } else if (name == QLatin1StringView("orderinfo")) {
        printOrderInfo(atts);
    } else {
        return false;
    }
    return true;
}

void PrinterDriver::printFullOrder(const QString& qName, const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    const QChar dot(QLatin1Char('.'));
    if (qName == QLatin1StringView("customer")) {
        printCustomerHeader(atts);
    } else if (qName == QLatin1StringView("receipe")) {
        const QString name = value(atts, QLatin1StringView("name"));
        // Items whose name begins with "=" are internal and never printed.
        if (name.startsWith(QLatin1Char('=')))
            return;
        printPricedItem(atts, u"qdpt");
    } else if (qName == QLatin1StringView("variant")) {
        println(descriptionRow(value(atts, QLatin1StringView("number")),
                               variantText(value(atts, QLatin1StringView("quantity")),
                                           value(atts, QLatin1StringView("name"))),
                               value(atts, QLatin1StringView("price")),
                               value(atts, QLatin1StringView("totalPrice")), dot,
                               QStringLiteral("qdpt")));
    } else if (qName == QLatin1StringView("total")) {
        println(QString());
        setBold();
        printTotalLine(tr("TOTAL"), atts.value(QLatin1StringView("price")));
    }
}

void PrinterDriver::printPartialOrder(const QString& qName, const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    const QChar dot(QLatin1Char('.'));
    const auto ticketLine = [&](const QString& name) {
        println(descriptionRow(value(atts, QLatin1StringView("number")), name, QString(),
                               QString(), dot, QStringLiteral("qd")));
    };
    if (qName == QLatin1StringView("customer")) {
        printCustomerHeader(atts);
    } else if (qName == QLatin1StringView("receipe")) {
        setCharSize();
        ticketLine(value(atts, QLatin1StringView("name")));
    } else if (qName == QLatin1StringView("otherreceipe")) {
        setCharSize(1);
        ticketLine(value(atts, QLatin1StringView("name")));
    } else if (qName == QLatin1StringView("variant")) {
        ticketLine(variantText(value(atts, QLatin1StringView("quantity")),
                               value(atts, QLatin1StringView("name"))));
    }
}

// Order tickets: the kitchen ticket and the priced pre-bill.
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

// The kitchen ticket: the dishes by number, other dishes larger, and the
// changes to a dish.
void PrinterDriver::printTicketItem(const XmlAttributes& atts)
{
    setCharSize();
    printRow(atts, {"number"_L1, "name"_L1, {}, {}}, dot, qd);
}

void PrinterDriver::printTicketOtherItem(const XmlAttributes& atts)
{
    setCharSize(1);
    printRow(atts, {"number"_L1, "name"_L1, {}, {}}, dot, qd);
}

void PrinterDriver::printTicketVariant(const XmlAttributes& atts)
{
    println(descriptionRow(atts.value("number"_L1),
                           variantText(atts.value("quantity"_L1), atts.value("name"_L1)), {}, {}, dot, qd));
}

// The pre-bill: priced dishes and their changes, and the total in bold.
void PrinterDriver::printPreBillItem(const XmlAttributes& atts)
{
    // Items whose name begins with "=" are internal and never printed.
    if (atts.value("name"_L1).startsWith(u'='))
        return;
    printPricedItem(atts, qdpt);
}

void PrinterDriver::printPreBillVariant(const XmlAttributes& atts)
{
    println(descriptionRow(atts.value("number"_L1), variantText(atts.value("quantity"_L1), atts.value("name"_L1)),
                           atts.value("price"_L1), atts.value("totalPrice"_L1), dot, qdpt));
}

void PrinterDriver::printPreBillTotal(const XmlAttributes& atts)
{
    println(QString());
    setBold();
    printTotalLine(tr("TOTAL"), atts.value("price"_L1));
}

// The list of sold items and a customer's statement of account.
#include "printerdriver.h"
#include "rowlayout.h"

using namespace Qt::StringLiterals;
using namespace RowLayout;

namespace {

// The request names a movement by an untranslated word that is looked up in
// the label catalogue like any other label. These are the words the suite
// sends; they are listed here so that the catalogues carry them.
[[maybe_unused]] constexpr const char* movementTypes[] = {
    QT_TRANSLATE_NOOP("PrinterDriver", "Payment"),
    QT_TRANSLATE_NOOP("PrinterDriver", "Invoice"),
    QT_TRANSLATE_NOOP("PrinterDriver", "Receipt"),
    QT_TRANSLATE_NOOP("PrinterDriver", "Credit note"),
    QT_TRANSLATE_NOOP("PrinterDriver", "Deposit"),
};

} // namespace

void PrinterDriver::printSoldItem(const XmlAttributes& atts)
{
    setBold();
    printRow(atts, {"quantity"_L1, "description"_L1, {}, "amount"_L1}, dot, qxdpt);
    setCharSize();
}

void PrinterDriver::printStatementHeader(const XmlAttributes&)
{
    setBold();
    println(descriptionRow(tr("Date"), tr("Description"), tr("Amount"), {}, blank, dateAmountType));
    reset();
}

void PrinterDriver::printStatement(const XmlAttributes& atts)
{
    const QByteArray type = atts.value("type"_L1).toUtf8();
    println(descriptionRow(atts.value("date"_L1).toString() + ": "_L1, tr(type.constData()),
                           atts.value("amount"_L1), {}, dot, dateAmountType));
}

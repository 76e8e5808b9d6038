// Columned lines: items, column titles, separator rules.
#include "printerdriver.h"
#include "rowlayout.h"

#include "emptytext.h"

using namespace RowLayout;
using namespace Qt::StringLiterals;

void RowLayout::appendRight(QString& row, QStringView text, int width, QChar fill)
{
    if (text.size() < width)
        row.resize(row.size() + (width - text.size()), fill);
    row.append(text);
}

void RowLayout::appendLeft(QString& row, QStringView text, int width, QChar fill)
{
    row.append(text);
    if (text.size() < width)
        row.resize(row.size() + (width - text.size()), fill);
}

namespace {

// The description column is exactly its width. A negative width (columns
// wider than the paper) leaves the description whole, as an unsigned count would.
void appendDescription(QString& row, QStringView text, int width, QChar fill)
{
    if (width >= 0 && text.size() > width)
        row.append(text.left(width));
    else
        appendLeft(row, text, width, fill);
}

const QLatin1StringView times(" x ");

} // namespace

QString PrinterDriver::descriptionRow(QStringView a1, QStringView a2, QStringView a3,
                                      QStringView a4, QChar fill, QStringView layout) const
{
    const int q = settings.quantityFieldWidth;
    const int p = settings.priceFieldWidth;
    const int t = settings.totalPriceFieldWidth;
    const int w = settings.paperWidth;
    QString row;
    row.reserve(qMax(w, 0) + a1.size() + a2.size() + a3.size() + a4.size() + 8);

    const bool withTimes = layout == qxdpt;
    if (withTimes || layout == qdpt) {
        // "qxdpt" writes " x " after the quantity and so has a description
        // two characters narrower than "qdpt".
        appendRight(row, a1, q);
        if (withTimes)
            row.append(times);
        else
            row.append(blank);
        appendDescription(row, a2, w - q - p - t - (withTimes ? 3 : 1), fill);
        appendRight(row, a3, p, fill);
        appendRight(row, a4, t);
    } else if (layout == qxdtDoubleLine) {
        row.append(a1).append(times).append(a3).append(u'\n');
        appendDescription(row, a2, w - t, fill);
        appendRight(row, a4, t, fill);
    } else if (layout == qxd) {
        appendRight(row, a1, q);
        row.append(times);
        appendDescription(row, a2, w - q - 3, fill);
    } else if (layout == qd) {
        // Three characters are reserved for a one-character separator, so the
        // line ends two characters short of the paper.
        appendRight(row, a1, q);
        row.append(blank);
        appendDescription(row, a2, w - q - 3, blank);
    } else if (layout == dateAmountType) {
        appendLeft(row, a1, 15);
        appendDescription(row, a2, w - 15 - p - 3, fill);
        appendRight(row, a3, p, fill);
    } else {
        return emptyText();
    }
    return row;
}

void PrinterDriver::printColumnsHeader(const QString& a1, const QString& a2, const QString& a3,
                                       const QString& a4)
{
    if (!oneTime())
        return;
    setBold();
    println(descriptionRow(a1, a2, a3, a4, blank, qdpt));
    setCharSize();
}

void PrinterDriver::printItemColumnsHeader(bool withUnitPrice)
{
    // The titles print once per document; translating them for every item
    // would cost more than the item line itself on a long receipt.
    if (oneTimeDone)
        return;
    if (withUnitPrice)
        printColumnsHeader(tr("Num"), tr("Description"), tr("Price"), tr("Amount"));
    else
        printColumnsHeader(tr("Num"), tr("Description"), QString(), tr("Price"));
}

void PrinterDriver::printSeparatorLine()
{
    println(QString(qMax(settings.paperWidth, 0), u'='));
}

// Columned lines: items, column titles, separator rules.
#include "printerdriver.h"

namespace {

// Padding never cuts: a value longer than its column widens the line.
QString rightJustified(const QString& text, int width, QChar fill)
{
    return text.size() < width ? QString(width - text.size(), fill) + text : text;
}

QString leftJustified(const QString& text, int width, QChar fill)
{
    return text.size() < width ? text + QString(width - text.size(), fill) : text;
}

// The description column is exactly its width. A negative width (columns
// wider than the paper) leaves the description whole, as an unsigned count would.
QString descriptionColumn(const QString& text, int width, QChar fill)
{
    if (width < 0)
        return text;
    return leftJustified(text, width, fill).left(width);
}

const QChar blank(QLatin1Char(' '));

} // namespace

QString PrinterDriver::descriptionRow(const QString& a1, const QString& a2, const QString& a3,
                                      const QString& a4, QChar fill, const QString& layout) const
{
    const int q = settings.quantityFieldWidth;
    const int p = settings.priceFieldWidth;
    const int t = settings.totalPriceFieldWidth;
    const int w = settings.paperWidth;

    if (layout == QLatin1StringView("qdpt")) {
        return rightJustified(a1, q, blank) + blank + descriptionColumn(a2, w - q - p - t - 1, fill)
            + rightJustified(a3, p, fill) + rightJustified(a4, t, blank);
    }
    if (layout == QLatin1StringView("qxdpt")) {
        return rightJustified(a1, q, blank) + QLatin1StringView(" x ")
            + descriptionColumn(a2, w - q - p - t - 3, fill) + rightJustified(a3, p, fill)
            + rightJustified(a4, t, blank);
    }
    if (layout == QLatin1StringView("qxdtDoubleLine")) {
        return a1 + QLatin1StringView(" x ") + a3 + QLatin1Char('\n')
            + descriptionColumn(a2, w - t, fill) + rightJustified(a4, t, fill);
    }
    if (layout == QLatin1StringView("qxd")) {
        return rightJustified(a1, q, blank) + QLatin1StringView(" x ")
            + descriptionColumn(a2, w - q - 3, fill);
    }
    if (layout == QLatin1StringView("qd")) {
        // Three characters are reserved for a one-character separator, so the
        // line ends two characters short of the paper.
        return rightJustified(a1, q, blank) + blank + descriptionColumn(a2, w - q - 3, blank);
    }
    if (layout == QLatin1StringView("date-amount-type")) {
        return leftJustified(a1, 15, blank) + descriptionColumn(a2, w - 15 - p - 3, fill)
            + rightJustified(a3, p, fill);
    }
    return QLatin1String("");
}

void PrinterDriver::printColumnsHeader(const QString& a1, const QString& a2, const QString& a3,
                                       const QString& a4)
{
    if (!oneTime())
        return;
    setBold();
    println(descriptionRow(a1, a2, a3, a4, blank, QStringLiteral("qdpt")));
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
    println(QString(qMax(settings.paperWidth, 0), QLatin1Char('=')));
}

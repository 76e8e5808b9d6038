// Columned lines: items, column titles, separator rules.
#include "printerdriver.h"
#include "rowlayout.h"

#include "emptytext.h"

#include <algorithm>

using namespace RowLayout;
using namespace Qt::StringLiterals;

namespace {

// One column of a row and how its text meets its width. Padding never cuts;
// only the description column is cut, to exactly its width. A negative
// description width (columns wider than the paper) leaves the description
// whole, as an unsigned count would.
struct Column
{
    enum Justify { Plain, Right, Left, Description };

    QStringView text;
    Justify justify = Plain;
    int width = 0;
    QChar fill = blank;

    qsizetype length() const
    {
        if (justify == Plain || width < 0)
            return text.size();
        if (justify == Description)
            return width;
        return qMax<qsizetype>(width, text.size());
    }

    char16_t* write(char16_t* out) const
    {
        const qsizetype padding = length() - qMin(text.size(), length());
        const qsizetype shown = length() - padding;
        if (justify == Right)
            out = std::fill_n(out, padding, fill.unicode());
        out = std::copy_n(text.utf16(), shown, out);
        if (justify != Right)
            out = std::fill_n(out, padding, fill.unicode());
        return out;
    }
};

// The row is measured first and written in one piece, into a text whose
// storage serves row after row: a long document builds one row per item.
const QString& joinColumns(QString& row, std::initializer_list<Column> columns)
{
    qsizetype length = 0;
    for (const Column& column : columns)
        length += column.length();
    row.resize(length);
    char16_t* out = reinterpret_cast<char16_t*>(row.data());
    for (const Column& column : columns)
        out = column.write(out);
    return row;
}

const QStringView times(u" x ");
const QStringView oneBlank(u" ");
const QStringView lineFeed(u"\n");

} // namespace

QString PrinterDriver::descriptionRow(QStringView a1, QStringView a2, QStringView a3,
                                      QStringView a4, QChar fill, QStringView layout) const
{
    const int q = settings.quantityFieldWidth;
    const int p = settings.priceFieldWidth;
    const int t = settings.totalPriceFieldWidth;
    const int w = settings.paperWidth;
    using C = Column;

    if (layout == qdpt) {
        return joinColumns(rowBuffer, {{a1, C::Right, q}, {oneBlank}, {a2, C::Description, w - q - p - t - 1, fill},
                            {a3, C::Right, p, fill}, {a4, C::Right, t}});
    }
    if (layout == qxdpt) {
        // " x " after the quantity makes the description two characters
        // narrower than in "qdpt".
        return joinColumns(rowBuffer, {{a1, C::Right, q}, {times}, {a2, C::Description, w - q - p - t - 3, fill},
                            {a3, C::Right, p, fill}, {a4, C::Right, t}});
    }
    if (layout == qxdtDoubleLine) {
        return joinColumns(rowBuffer, {{a1}, {times}, {a3}, {lineFeed}, {a2, C::Description, w - t, fill},
                            {a4, C::Right, t, fill}});
    }
    if (layout == qxd)
        return joinColumns(rowBuffer, {{a1, C::Right, q}, {times}, {a2, C::Description, w - q - 3, fill}});
    if (layout == qd) {
        // Three characters are reserved for a one-character separator, so the
        // line ends two characters short of the paper.
        return joinColumns(rowBuffer, {{a1, C::Right, q}, {oneBlank}, {a2, C::Description, w - q - 3}});
    }
    if (layout == dateAmountType) {
        return joinColumns(rowBuffer, {{a1, C::Left, 15}, {a2, C::Description, w - 15 - p - 3, fill},
                            {a3, C::Right, p, fill}});
    }
    return emptyText();
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

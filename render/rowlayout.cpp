// Columned lines: items, column titles, separator rules.
#include "printerdriver.h"
#include "rowlayout.h"

#include "emptytext.h"

#include <algorithm>
#include <array>

using namespace RowLayout;
using namespace Qt::StringLiterals;

namespace {

// One column of a row and how its text meets its width, in printed
// characters. Padding never cuts; only the description column is cut, to
// exactly its width, and never inside a character. A negative description
// width (columns wider than the paper) leaves the description whole, as an
// unsigned count would.
struct Column
{
    enum Justify { Plain, Right, Left, Description };

    QStringView text;
    Justify justify = Plain;
    int width = 0;
    QChar fill = blank;
    // Whether every UTF-16 unit of the text is one printed character, so
    // that sizes need not be counted.
    bool unitsArePrinted = true;

    QStringView shown() const
    {
        if (justify != Description || width < 0)
            return text;
        return unitsArePrinted ? text.first(qMin<qsizetype>(width, text.size())) : printedLeft(text, width);
    }
    qsizetype padding(QStringView shownText) const
    {
        if (justify == Plain)
            return 0;
        return qMax<qsizetype>(0, width - (unitsArePrinted ? shownText.size() : printedLength(shownText)));
    }
};

// The row is measured first and written in one piece, into a text whose
// storage serves row after row: a long document builds one row per item.
const QString& joinColumns(QString& row, std::initializer_list<Column> columns)
{
    struct Laid { QStringView shown; qsizetype padding; };
    std::array<Laid, 8> laid;
    qsizetype length = 0;
    std::size_t count = 0;
    for (const Column& column : columns) {
        const QStringView shown = column.shown();
        laid[count] = {shown, column.padding(shown)};
        length += shown.size() + laid[count++].padding;
    }
    row.resize(length);
    char16_t* out = reinterpret_cast<char16_t*>(row.data());
    count = 0;
    for (const Column& column : columns) {
        const auto [shown, padding] = laid[count++];
        if (column.justify == Column::Right)
            out = std::fill_n(out, padding, column.fill.unicode());
        out = std::copy_n(shown.utf16(), shown.size(), out);
        if (column.justify != Column::Right)
            out = std::fill_n(out, padding, column.fill.unicode());
    }
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

    // Columns are laid out on the text as the printer will print it. Only
    // text composed for a page that encodes everything can hold characters
    // of two UTF-16 units; every other text is counted by its size.
    QString printed1, printed2, printed3, printed4;
    bool plain = true;
    const auto ready = [this, &plain](QStringView text, QString& storage) {
        if (!codePageInForce().needsPreparing(text))
            return text;
        storage = printable(text);
        plain = plain && !codePageInForce().encodesEverything();
        return QStringView(storage);
    };
    a1 = ready(a1, printed1);
    a2 = ready(a2, printed2);
    a3 = ready(a3, printed3);
    a4 = ready(a4, printed4);

    const auto column = [plain](QStringView text, C::Justify justify, int width, QChar fill = blank) {
        return C{text, justify, width, fill, plain};
    };
    if (layout == qdpt) {
        return joinColumns(rowBuffer, {column(a1, C::Right, q), {oneBlank},
                                       column(a2, C::Description, w - q - p - t - 1, fill),
                                       column(a3, C::Right, p, fill), column(a4, C::Right, t)});
    }
    if (layout == qxdpt) {
        // " x " after the quantity makes the description two characters
        // narrower than in "qdpt".
        return joinColumns(rowBuffer, {column(a1, C::Right, q), {times},
                                       column(a2, C::Description, w - q - p - t - 3, fill),
                                       column(a3, C::Right, p, fill), column(a4, C::Right, t)});
    }
    if (layout == qxdtDoubleLine) {
        return joinColumns(rowBuffer, {{a1}, {times}, {a3}, {lineFeed}, column(a2, C::Description, w - t, fill),
                                       column(a4, C::Right, t, fill)});
    }
    if (layout == qxd) {
        return joinColumns(rowBuffer,
                           {column(a1, C::Right, q), {times}, column(a2, C::Description, w - q - 3, fill)});
    }
    if (layout == qd) {
        // Three characters are reserved for a one-character separator, so the
        // line ends two characters short of the paper.
        return joinColumns(rowBuffer,
                           {column(a1, C::Right, q), {oneBlank}, column(a2, C::Description, w - q - 3)});
    }
    if (layout == dateAmountType) {
        return joinColumns(rowBuffer, {column(a1, C::Left, 15), column(a2, C::Description, w - 15 - p - 3, fill),
                                       column(a3, C::Right, p, fill)});
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

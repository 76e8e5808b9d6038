// Columned lines: items, column titles, separator rules.
#include "printerdriver.h"
#include "rowlayout.h"

#include "emptytext.h"

#include <array>
#include <cstring>

using namespace RowLayout;
using namespace Qt::StringLiterals;

std::optional<Layout> RowLayout::layoutNamed(QStringView name)
{
    static constexpr std::pair<QStringView, Layout> names[] = {
        {u"qdpt", qdpt}, {u"qxdpt", qxdpt}, {u"qxdtDoubleLine", qxdtDoubleLine},
        {u"qxd", qxd},   {u"qd", qd},       {u"date-amount-type", dateAmountType},
    };
    for (const auto& [known, layout] : names) {
        if (name == known)
            return layout;
    }
    return std::nullopt;
}

namespace {

// Rows are short and built once per item of a long document: their pieces
// are copied and filled in a few overlapping word-sized moves rather than
// through calls meant for long runs.
template<typename Word>
void moveWord(char16_t* out, const char16_t* in)
{
    Word word;
    std::memcpy(&word, in, sizeof word);
    std::memcpy(out, &word, sizeof word);
}

inline char16_t* copyUnits(char16_t* out, const char16_t* in, qsizetype count)
{
    if (count >= 8) {
        for (qsizetype i = 0; i + 8 <= count; i += 8) {
            moveWord<quint64>(out + i, in + i);
            moveWord<quint64>(out + i + 4, in + i + 4);
        }
        moveWord<quint64>(out + count - 8, in + count - 8);
        moveWord<quint64>(out + count - 4, in + count - 4);
    } else if (count >= 4) {
        moveWord<quint64>(out, in);
        moveWord<quint64>(out + count - 4, in + count - 4);
    } else if (count >= 2) {
        moveWord<quint32>(out, in);
        moveWord<quint32>(out + count - 2, in + count - 2);
    } else if (count == 1) {
        *out = *in;
    }
    return out + count;
}

inline char16_t* fillUnits(char16_t* out, char16_t fill, qsizetype count)
{
    const quint64 four = 0x0001000100010001ull * fill;
    if (count >= 4) {
        for (qsizetype i = 0; i + 4 <= count; i += 4)
            std::memcpy(out + i, &four, sizeof four);
        std::memcpy(out + count - 4, &four, sizeof four);
    } else {
        for (qsizetype i = 0; i < count; ++i)
            out[i] = fill;
    }
    return out + count;
}

// One column of a row and how its text meets its width, in printed
// characters. Padding never cuts; only the description column is cut, to
// exactly its width, and never inside a character. A negative description
// width (columns wider than the paper) leaves the description whole, as an
// unsigned count would.
struct Column
{
    enum Justify : char { Plain, Right, Left, Description };

    QStringView text;
    Justify justify = Plain;
    int width = 0;
    char16_t fill = u' ';

    // The text as it is shown and the padding it gets, for text whose
    // UTF-16 units each print as one character, or otherwise.
    template<bool unitsArePrinted>
    qsizetype lay(QStringView& shown) const
    {
        shown = text;
        if (justify == Plain)
            return 0;
        if (justify == Description && width >= 0)
            shown = unitsArePrinted ? text.first(qMin<qsizetype>(width, text.size())) : printedLeft(text, width);
        return qMax<qsizetype>(0, width - (unitsArePrinted ? shown.size() : printedLength(shown)));
    }
};

// The row is measured first and written in one piece, into a text whose
// storage serves row after row.
template<bool unitsArePrinted, std::size_t count>
const QString& joinColumns(QString& row, const std::array<Column, count>& columns)
{
    std::array<QStringView, count> shown;
    std::array<qsizetype, count> padding;
    qsizetype length = 0;
    for (std::size_t i = 0; i < count; ++i) {
        padding[i] = columns[i].template lay<unitsArePrinted>(shown[i]);
        length += shown[i].size() + padding[i];
    }
    row.resize(length);
    char16_t* out = reinterpret_cast<char16_t*>(row.data());
    for (std::size_t i = 0; i < count; ++i) {
        const Column& column = columns[i];
        if (column.justify == Column::Right)
            out = fillUnits(out, column.fill, padding[i]);
        out = copyUnits(out, shown[i].utf16(), shown[i].size());
        if (column.justify != Column::Right)
            out = fillUnits(out, column.fill, padding[i]);
    }
    return row;
}

// Texts whose units are all printed characters take the short way.
template<std::size_t count>
const QString& joinColumns(QString& row, const std::array<Column, count>& columns, bool unitsArePrinted)
{
    return unitsArePrinted ? joinColumns<true>(row, columns) : joinColumns<false>(row, columns);
}

constexpr QStringView times(u" x ");
constexpr QStringView oneBlank(u" ");
constexpr QStringView lineFeed(u"\n");

} // namespace

QString PrinterDriver::descriptionRow(QStringView a1, QStringView a2, QStringView a3, QStringView a4,
                                      QChar fill, QStringView layout) const
{
    const std::optional<Layout> named = layoutNamed(layout);
    return named ? descriptionRow(a1, a2, a3, a4, fill, *named) : emptyText();
}

QString PrinterDriver::descriptionRow(QStringView a1, QStringView a2, QStringView a3, QStringView a4,
                                      QChar fill, Layout layout) const
{
    const int q = settings.quantityFieldWidth;
    const int p = settings.priceFieldWidth;
    const int t = settings.totalPriceFieldWidth;
    const int w = settings.paperWidth;

    // Columns are laid out on the text as the printer will print it. Only
    // text composed for a page that encodes everything can hold characters
    // of two UTF-16 units; every other text is counted by its size.
    QString printed1, printed2, printed3, printed4;
    bool plain = true;
    const auto ready = [this, &plain](QStringView& text, QString& storage) {
        if (!codePage->needsPreparing(text))
            return;
        storage = printable(text);
        text = storage;
        plain = plain && !codePage->encodesEverything();
    };
    ready(a1, printed1);
    ready(a2, printed2);
    ready(a3, printed3);
    ready(a4, printed4);

    using C = Column;
    const char16_t f = fill.unicode();
    switch (layout) {
    case qdpt:
        return joinColumns(rowBuffer,
                           std::array<C, 5>{{{a1, C::Right, q}, {oneBlank}, {a2, C::Description, w - q - p - t - 1, f},
                                             {a3, C::Right, p, f}, {a4, C::Right, t}}},
                           plain);
    case qxdpt:
        // " x " after the quantity makes the description two characters
        // narrower than in "qdpt".
        return joinColumns(rowBuffer,
                           std::array<C, 5>{{{a1, C::Right, q}, {times}, {a2, C::Description, w - q - p - t - 3, f},
                                             {a3, C::Right, p, f}, {a4, C::Right, t}}},
                           plain);
    case qxdtDoubleLine:
        return joinColumns(rowBuffer,
                           std::array<C, 6>{{{a1}, {times}, {a3}, {lineFeed}, {a2, C::Description, w - t, f},
                                             {a4, C::Right, t, f}}},
                           plain);
    case qxd:
        return joinColumns(rowBuffer,
                           std::array<C, 3>{{{a1, C::Right, q}, {times}, {a2, C::Description, w - q - 3, f}}}, plain);
    case qd:
        // Three characters are reserved for a one-character separator, so the
        // line ends two characters short of the paper.
        return joinColumns(rowBuffer,
                           std::array<C, 3>{{{a1, C::Right, q}, {oneBlank}, {a2, C::Description, w - q - 3}}}, plain);
    case dateAmountType:
        return joinColumns(rowBuffer,
                           std::array<C, 3>{{{a1, C::Left, 15}, {a2, C::Description, w - 15 - p - 3, f},
                                             {a3, C::Right, p, f}}},
                           plain);
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

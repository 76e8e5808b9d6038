// Columned lines: items, column titles, separator rules.
#include "printerdriver.h"
#include "rowlayout.h"

#include "asciiblocks.h"
#include "emptytext.h"

#include <array>
#include <cstring>
#include <type_traits>

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
// are copied and filled in a few overlapping word-sized moves.
template<typename Char>
Char* copyUnits(Char* to, const Char* from, qsizetype count)
{
    AsciiBlocks::copyShort(reinterpret_cast<char*>(to), reinterpret_cast<const char*>(from),
                           std::size_t(count) * sizeof(Char));
    return to + count;
}

template<typename Char>
Char* fillUnits(Char* to, Char fill, qsizetype count)
{
    constexpr quint64 spread = sizeof(Char) == 1 ? 0x0101010101010101ull : 0x0001000100010001ull;
    const quint64 pattern = spread * static_cast<std::make_unsigned_t<Char>>(fill);
    auto* out = reinterpret_cast<char*>(to);
    const std::size_t bytes = std::size_t(count) * sizeof(Char);
    if (bytes >= 8) {
        for (std::size_t i = 0; i + 8 <= bytes; i += 8)
            std::memcpy(out + i, &pattern, 8);
        std::memcpy(out + bytes - 8, &pattern, 8);
    } else if (bytes >= 4) {
        std::memcpy(out, &pattern, 4);
        std::memcpy(out + bytes - 4, &pattern, 4);
    } else if (bytes >= 2) {
        std::memcpy(out, &pattern, 2);
        std::memcpy(out + bytes - 2, &pattern, 2);
    } else if (bytes == 1) {
        *out = char(pattern);
    }
    return to + count;
}

// Rows are built as text, or as bytes where they are plain ASCII.
template<typename Char>
using View = std::conditional_t<std::is_same_v<Char, char>, QByteArrayView, QStringView>;

template<typename Char>
const Char* unitsOf(View<Char> text)
{
    if constexpr (std::is_same_v<Char, char>)
        return text.data();
    else
        return text.utf16();
}

// The columns of a row, each how its text meets its width in printed
// characters. Padding never cuts; only the description column is cut, to
// exactly its width, and never inside a character. A negative description
// width (columns wider than the paper) leaves the description whole, as an
// unsigned count would. `plain`: every unit of the text is one printed
// character, so that sizes need not be counted.
// UTF-8 is counted by its characters: by the bytes that start one.
qsizetype utf8Length(QByteArrayView text)
{
    qsizetype length = 0;
    for (const char c : text)
        length += (static_cast<unsigned char>(c) & 0xc0) != 0x80;
    return length;
}

QByteArrayView utf8Left(QByteArrayView text, qsizetype count)
{
    qsizetype end = 0;
    for (qsizetype printed = 0; end < text.size(); ++end) {
        if ((static_cast<unsigned char>(text[end]) & 0xc0) != 0x80 && printed++ == count)
            break;
    }
    return text.first(end);
}

template<bool plain>
qsizetype printedSize(QByteArrayView text)
{
    return plain ? text.size() : utf8Length(text);
}

template<bool plain>
qsizetype printedSize(QStringView text)
{
    return plain ? text.size() : printedLength(text);
}

// Text as it stands.
template<typename Char>
struct Plain
{
    View<Char> text;

    qsizetype size() const { return text.size(); }
    Char* write(Char* out) const { return copyUnits(out, unitsOf<Char>(text), text.size()); }
};

// A separator between columns, of a few ASCII characters.
template<std::size_t length>
struct Literal
{
    char text[length];

    qsizetype size() const { return qsizetype(length); }
    template<typename Char>
    Char* write(Char* out) const
    {
        for (std::size_t i = 0; i < length; ++i)
            out[i] = Char(text[i]);
        return out + length;
    }
};

// Text after its padding (right) or before it.
template<typename Char, bool plain, bool right>
struct Padded
{
    Padded(View<Char> text, int width, Char fill = Char(' '))
        : text(text), padding(qMax<qsizetype>(0, width - printedSize<plain>(text))), fill(fill)
    {
    }

    qsizetype size() const { return text.size() + padding; }
    Char* write(Char* out) const
    {
        if (right)
            return copyUnits(fillUnits(out, fill, padding), unitsOf<Char>(text), text.size());
        return fillUnits(copyUnits(out, unitsOf<Char>(text), text.size()), fill, padding);
    }

    View<Char> text;
    qsizetype padding;
    Char fill;
};

// The description: cut to its width, then padded to it.
template<typename Char, bool plain>
struct Description : Padded<Char, plain, false>
{
    Description(View<Char> text, int width, Char fill = Char(' '))
        : Padded<Char, plain, false>(cut(text, width), width, fill)
    {
    }

    static View<Char> cut(View<Char> text, int width)
    {
        if (width < 0)
            return text;
        if constexpr (plain)
            return text.first(qMin<qsizetype>(width, text.size()));
        else if constexpr (std::is_same_v<Char, char>)
            return utf8Left(text, width);
        else
            return printedLeft(text, width);
    }
};

template<typename Row>
using CharOf = std::conditional_t<std::is_same_v<Row, QByteArray>, char, char16_t>;

// The row is measured first and written in one piece, into storage that
// serves row after row.
template<typename Row, typename... Columns>
const Row& joinColumns(Row& row, const Columns&... columns)
{
    row.resize((columns.size() + ...));
    auto* out = reinterpret_cast<CharOf<Row>*>(row.data());
    ((out = columns.write(out)), ...);
    return row;
}

// The columns of each layout. The widths come from the document's settings:
// q quantity, p unit price, t total, w paper.
template<bool plain, typename Row, typename Char = CharOf<Row>>
const Row& layRow(Row& row, Layout layout, const std::array<View<Char>, 4>& a, Char f,
                  const DocumentSettings& settings)
{
    const int q = settings.quantityFieldWidth;
    const int p = settings.priceFieldWidth;
    const int t = settings.totalPriceFieldWidth;
    const int w = settings.paperWidth;
    using Text = Plain<Char>;
    using Right = Padded<Char, plain, true>;
    using Left = Padded<Char, plain, false>;
    using Cut = Description<Char, plain>;
    constexpr Literal<3> times{{' ', 'x', ' '}};
    constexpr Literal<1> oneBlank{{' '}};
    switch (layout) {
    case qdpt:
        return joinColumns(row, Right(a[0], q), oneBlank, Cut(a[1], w - q - p - t - 1, f), Right(a[2], p, f),
                           Right(a[3], t));
    case qxdpt:
        // " x " after the quantity makes the description two characters
        // narrower than in "qdpt".
        return joinColumns(row, Right(a[0], q), times, Cut(a[1], w - q - p - t - 3, f), Right(a[2], p, f),
                           Right(a[3], t));
    case qxdtDoubleLine:
        return joinColumns(row, Text{a[0]}, times, Text{a[2]}, Literal<1>{{'\n'}}, Cut(a[1], w - t, f),
                           Right(a[3], t, f));
    case qxd:
        return joinColumns(row, Right(a[0], q), times, Cut(a[1], w - q - 3, f));
    case qd:
        // Three characters are reserved for a one-character separator, so the
        // line ends two characters short of the paper.
        return joinColumns(row, Right(a[0], q), oneBlank, Cut(a[1], w - q - 3));
    case dateAmountType:
        return joinColumns(row, Left(a[0], 15), Cut(a[1], w - 15 - p - 3, f), Right(a[2], p, f));
    }
    row.clear();
    return row;
}

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
    // Columns are laid out on the text as the printer will print it. Only
    // text composed for a page that encodes everything can hold characters
    // of two UTF-16 units; every other text is counted by its size.
    std::array<QStringView, 4> texts{a1, a2, a3, a4};
    std::array<QString, 4> printed;
    bool plain = true;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (codePage->needsPreparing(texts[i])) {
            printed[i] = printable(texts[i]);
            texts[i] = printed[i];
            plain = plain && !codePage->encodesEverything();
        }
    }
    if (plain)
        return layRow<true>(rowBuffer, layout, texts, fill.unicode(), settings);
    return layRow<false>(rowBuffer, layout, texts, fill.unicode(), settings);
}

void PrinterDriver::printRow(const XmlAttributes& atts, const std::array<QLatin1StringView, 4>& columns, QChar fill,
                             Layout layout)
{
    // Most rows print the request's own bytes: printable ASCII for a printer
    // that prints ASCII as itself, or, for a UTF-8 printer, text that needs
    // no composing. They are laid out and written as those bytes, never
    // widened to text and encoded back.
    if (codePage->writesAsciiAsItself()) {
        std::array<QByteArrayView, 4> bytes;
        bool ascii = true;
        bool asBytes = true;
        for (std::size_t i = 0; asBytes && i < columns.size(); ++i) {
            if (columns[i].isEmpty())
                continue;
            bytes[i] = atts.utf8Value(columns[i]);
            if (!AsciiBlocks::isPrintableAscii(bytes[i].data(), bytes[i].size())) {
                ascii = false;
                asBytes = codePage->isUtf8()
                          && AsciiBlocks::isPrintableUtf8BelowCombining(bytes[i].data(), bytes[i].size());
            }
        }
        const char f = char(fill.unicode());
        if (asBytes
            && printEncodedLine(ascii ? layRow<true>(encodedRow, layout, bytes, f, settings)
                                      : layRow<false>(encodedRow, layout, bytes, f, settings)))
            return;
    }
    const auto text = [&](std::size_t i) { return columns[i].isEmpty() ? QStringView() : atts.value(columns[i]); };
    println(descriptionRow(text(0), text(1), text(2), text(3), fill, layout));
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

#include "printfile.h"

#include "escposfile.h"

#include "codepage.h"

#include <QRegularExpression>
#include <QStringDecoder>

#include <optional>

using namespace Qt::StringLiterals;

namespace preview {

namespace {

// Fiscal command lines: an item, "description"quantity*priceHdepartmentR,
// maybe followed by an adjustment (*1M adds, *5M takes off); a payment,
// amountH<type>T; a discount rate, =rate*2M.
const QRegularExpression fiscalItem(u"^\"(.*)\"([^\"*]*)\\*([^\"]*?)H([^\"]*?)R(?:(.*)\\*([15])M)?$"_s);
const QRegularExpression fiscalPayment(u"^(.*)H([1235])T$"_s);
const QRegularExpression fiscalDiscount(u"^=(.*)\\*2M$"_s);

QString paymentName(QChar type)
{
    switch (type.unicode()) {
    case u'1': return u"Cash"_s;
    case u'2': return u"Cheque"_s;
    case u'3': return u"Credit card"_s;
    default: return u"Ticket"_s;
    }
}

// `left` and `right` on one line of the paper, `right` against its edge;
// when they do not fit side by side, each gets a line of its own.
QStringList spread(const QString& left, const QString& right, int width)
{
    const qsizetype room = width - printedLength(left) - printedLength(right);
    if (room >= 1)
        return {left + QString(room, u' ') + right};
    const qsizetype indent = qMax<qsizetype>(0, width - printedLength(right));
    return {left, QString(indent, u' ') + right};
}

class Reader
{
public:
    Reader(const std::vector<SectionSetup>& setups, Paper& paper)
        : setups(setups), paper(paper), decoders(setups.size())
    {
    }

    void line(qint64 offset, QByteArrayView raw)
    {
        const bool commandLine = raw.endsWith('\r');
        const QString text = decode(offset, commandLine ? raw.chopped(1) : raw);
        if (runsOn) {
            // The rest of a printed line that held a line feed.
            runsOn = !text.endsWith("\"@"_L1);
            addRow(offset, runsOn ? text : text.chopped(2));
        } else if (commandLine) {
            if (!inSection || !current().fiscal)
                open(offset, true);
            fiscalLine(offset, text);
        } else if (text.isEmpty()) {
            // A section starts: what comes next goes on a strip of its own.
            inSection = false;
        } else if (text == "j"_L1) {
            open(offset, false);
        } else if (text == "J"_L1 || text == "1T"_L1) {
            close(offset, text == "1T"_L1);
        } else if (text.endsWith("\"@"_L1)) {
            // A fiscal section's first printed line has no opening quote.
            const qsizetype start = text.startsWith(u'"') && text.size() > 2 ? 1 : 0;
            addRow(offset, text.sliced(start, text.size() - 2 - start));
        } else if (text.startsWith(u'"')) {
            runsOn = true;
            addRow(offset, text.sliced(1));
        } else {
            unknownLine(offset, text);
        }
    }

private:
    std::size_t setupIndexAt(qint64 offset) const
    {
        std::size_t index = 0;
        while (index + 1 < setups.size() && setups[index + 1].offset <= offset)
            ++index;
        return index;
    }

    QString decode(qint64 offset, QByteArrayView bytes)
    {
        const std::size_t index = setupIndexAt(offset);
        auto& decoder = decoders[index];
        if (!decoder) {
            decoder.emplace(setups[index].codePage.constData(), QStringDecoder::Flag::Stateless);
            if (!decoder->isValid())
                decoder.emplace(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        }
        return decoder->decode(bytes);
    }

    Section& current() { return paper.sections.back(); }

    Section& ensureSection(qint64 offset)
    {
        if (!inSection)
            open(offset, false);
        return current();
    }

    void open(qint64 offset, bool fiscal)
    {
        const SectionSetup& setup = setups[setupIndexAt(offset)];
        Section& section = paper.sections.emplace_back();
        section.method = setup.method;
        section.paperWidth = setup.paperWidth;
        section.codePage = setup.codePage;
        section.fiscal = fiscal;
        inSection = true;
    }

    void close(qint64 offset, bool fiscal)
    {
        if (!inSection) {
            // A document with no method element closes a section it never
            // opened; there is no paper to cut.
            if (!fiscal)
                return;
            open(offset, true);
        }
        if (fiscal) {
            addRow(offset, u"closing: total by the printer"_s,
                   Row::Style::Annotation);
        }
        current().cut = true;
        inSection = false;
    }

    Row& addRow(qint64 offset, const QString& text, Row::Style style = Row::Style::Paper)
    {
        Section& section = ensureSection(offset);
        Row& row = section.rows.emplace_back();
        row.text = text;
        row.style = style;
        row.offset = offset;
        if (style == Row::Style::Paper)
            flagUnprintable(section, row);
        return row;
    }

    void flagUnprintable(const Section& section, Row& row)
    {
        for (qsizetype i = 0; i < row.text.size(); ++i) {
            const QChar c = row.text.at(i);
            if (c == QChar::ReplacementCharacter) {
                row.flags.push_back({Flag::Kind::Unprintable,
                                     "a byte that is no character of code page "_L1
                                         + QString::fromLatin1(section.codePage),
                                     "not in "_L1 + QString::fromLatin1(section.codePage)});
            } else if (c.unicode() < 0x20 || c.unicode() == 0x7f) {
                const QString code = "U+"_L1 + QString::number(c.unicode(), 16).toUpper().rightJustified(4, u'0');
                row.flags.push_back({Flag::Kind::Unprintable,
                                     "control character "_L1 + code + ": the printer takes it as a command"_L1,
                                     "control character "_L1 + code});
            } else {
                continue;
            }
            row.marks.push_back({i, 1});
        }
    }

    void fiscalLine(qint64 offset, const QString& text)
    {
        // The printer's command lines are short; a long one is no command,
        // and is not given to the patterns, which are slow on long text.
        constexpr qsizetype longestCommand = 1024;
        if (text.size() > longestCommand)
            return unknownLine(offset, text);
        const int width = current().paperWidth;
        if (const auto item = fiscalItem.match(text); item.hasMatch()) {
            const QString detail = item.captured(2) + " x "_L1 + item.captured(3) + "  dept "_L1 + item.captured(4);
            for (const QString& line : spread(item.captured(1), detail, width))
                addRow(offset, line);
            if (item.hasCaptured(6)) {
                const bool takesOff = item.captured(6) == "5"_L1;
                const QString adjustment = takesOff ? u"discount "_s : u"surcharge "_s;
                for (const QString& line : spread({}, adjustment + item.captured(5), width))
                    addRow(offset, line);
            }
        } else if (const auto payment = fiscalPayment.match(text); payment.hasMatch()) {
            for (const QString& line : spread(paymentName(payment.captured(2).at(0)), payment.captured(1), width))
                addRow(offset, line);
        } else if (const auto discount = fiscalDiscount.match(text); discount.hasMatch()) {
            for (const QString& line : spread(u"Discount"_s, discount.captured(1) + u'%', width))
                addRow(offset, line);
        } else {
            unknownLine(offset, text);
        }
    }

    void unknownLine(qint64 offset, const QString& text)
    {
        Row& row = addRow(offset, text, Row::Style::Annotation);
        row.flags.push_back({Flag::Kind::Notice,
                             u"not a line the printer knows; it reaches the printer as it stands"_s,
                             u"unknown command line"_s});
    }

    const std::vector<SectionSetup>& setups;
    Paper& paper;
    std::vector<std::optional<QStringDecoder>> decoders;
    // Only the newest section can be open.
    bool inSection = false;
    // Inside a printed line whose text held a line feed.
    bool runsOn = false;
};

} // namespace

Paper readPrintFile(const QByteArray& bytes, const std::vector<SectionSetup>& setups, const QString& source)
{
    Paper paper;
    paper.source = source;
    const std::vector<SectionSetup> fallback{SectionSetup{}};
    const std::vector<SectionSetup>& all = setups.empty() ? fallback : setups;
    Reader reader(all, paper);
    EscPosReader escPos(paper);
    bool lastWasEscPos = false;
    // Each document's bytes go to the reader of its dialect.
    qint64 start = 0;
    for (std::size_t i = 0; i < all.size() && start < bytes.size(); ++i) {
        const qint64 to = i + 1 < all.size() ? qBound(start, all[i + 1].offset, qint64(bytes.size())) : bytes.size();
        if (all[i].escPos || looksLikeEscPos(QByteArrayView(bytes).sliced(start))) {
            escPos.read(bytes, start, to, all[i]);
            lastWasEscPos = true;
            start = to;
            continue;
        }
        if (lastWasEscPos)
            start = escPos.readEnding(bytes, start, to);
        lastWasEscPos = false;
        while (start < to) {
            qint64 end = bytes.indexOf('\n', start);
            if (end < 0 || end > to)
                end = to;
            reader.line(start, QByteArrayView(bytes).sliced(start, end - start));
            start = end + 1;
        }
        start = to;
    }
    return paper;
}

void flagUnclosedEnd(Paper& paper)
{
    if (paper.sections.empty() || paper.sections.back().cut)
        return;
    const Flag flag{Flag::Kind::Notice,
                    u"the print file ends inside this section: it is not closed and the paper is not cut"_s,
                    u"not closed, not cut"_s};
    if (!paper.sections.back().rows.empty())
        paper.sections.back().rows.back().flags.push_back(flag);
    else
        paper.unplaced.push_back(flag);
}

bool looksLikeRequest(const QByteArray& bytes)
{
    if (bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE"))
        return true;
    QByteArrayView rest(bytes);
    if (rest.startsWith("\xEF\xBB\xBF"))
        rest = rest.sliced(3);
    for (const char c : rest) {
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n')
            continue;
        return c == '<';
    }
    return false;
}

} // namespace preview

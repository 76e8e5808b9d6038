#include "paper.h"

#include "codepage.h"

using namespace Qt::StringLiterals;

namespace preview {

bool Paper::isFlagged() const
{
    if (!unplaced.empty())
        return true;
    for (const Section& section : sections) {
        for (const Row& row : section.rows) {
            if (!row.flags.empty())
                return true;
        }
    }
    return false;
}

Row* Paper::rowAt(qint64 offset)
{
    Row* last = nullptr;
    for (Section& section : sections) {
        for (Row& row : section.rows) {
            if (row.offset >= offset)
                return &row;
            last = &row;
        }
    }
    return last;
}

void Paper::flagStart(const Flag& flag)
{
    if (Row* first = rowAt(0))
        first->flags.insert(first->flags.begin(), flag);
    else
        unplaced.insert(unplaced.begin(), flag);
}

void Paper::forEachRow(const std::function<void(const Section&, const Row&, qsizetype)>& visit) const
{
    qsizetype number = 0;
    for (const Section& section : sections) {
        for (const Row& row : section.rows)
            visit(section, row, ++number);
    }
}

void flagWideRows(Paper& paper)
{
    for (Section& section : paper.sections) {
        for (Row& row : section.rows) {
            if (row.style != Row::Style::Paper)
                continue;
            const qsizetype length = printedLength(row.text);
            if (length <= section.paperWidth)
                continue;
            const QString count = QString::number(length);
            const QString width = QString::number(section.paperWidth);
            row.flags.push_back({Flag::Kind::Wide,
                                 "wider than the paper: "_L1 + count + " characters on paper "_L1 + width
                                     + " wide"_L1,
                                 count + " characters, paper "_L1 + width});
        }
    }
}

QString shownText(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else if (c < 0x20)
            text[i] = QChar(0x2400 + c);
        else if (c == 0x7f)
            text[i] = QChar(0x2421);
        else if (QChar::isSurrogate(c) || c == 0xfffe || c == 0xffff)
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace preview

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

QChar shownCharacter(QChar c)
{
    if (c.unicode() < 0x20)
        return QChar(0x2400 + c.unicode());
    if (c.unicode() == 0x7f)
        return QChar(0x2421);
    return c;
}

} // namespace preview

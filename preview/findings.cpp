#include "findings.h"

using namespace Qt::StringLiterals;

namespace preview {

namespace {

QString findingLine(const QString& source, const QString& where, const Flag& flag)
{
    QString line = source + ": "_L1 + where + ": "_L1 + flag.what;
    if (flag.requestLine > 0) {
        line += " (request line "_L1 + QString::number(flag.requestLine);
        if (flag.requestColumn > 0)
            line += ", column "_L1 + QString::number(flag.requestColumn);
        line += u')';
    }
    return line;
}

} // namespace

QStringList findingLines(const Paper& paper)
{
    QStringList lines;
    paper.forEachRow([&](const Section&, const Row& row, qsizetype number) {
        for (const Flag& flag : row.flags)
            lines << findingLine(paper.source, "printed line "_L1 + QString::number(number), flag);
    });
    for (const Flag& flag : paper.unplaced)
        lines << findingLine(paper.source, u"no printed line"_s, flag);
    return lines;
}

} // namespace preview

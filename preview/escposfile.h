#pragma once

#include "paper.h"
#include "printfile.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QStringDecoder>

#include <optional>

namespace preview {

// Whether `bytes` start with an ESC/POS printer's reset (ESC @).
bool looksLikeEscPos(QByteArrayView bytes);

// Reads ESC/POS print files into strips of paper: a reset starts a strip,
// a cut ends it; each line feed ends a row, printed bold, double height or
// centred as the commands before it say; raster pictures become rows of
// dots, the drawer's pulse a marked row, and a command it does not know is
// flagged with its byte offset. Its state carries on from one part of a
// print file to the next.
class EscPosReader
{
public:
    explicit EscPosReader(Paper& paper) : paper(paper) {}

    // Reads bytes [from, to) of `bytes`, written for the document `setup`.
    void read(const QByteArray& bytes, qint64 from, qint64 to, const SectionSetup& setup);
    // Reads the drawer's pulse, feed and cut that end an ESC/POS document
    // at `from`, written when the next document starts; answers where the
    // next document's own bytes start.
    qint64 readEnding(const QByteArray& bytes, qint64 from, qint64 to);

private:
    struct Modes
    {
        bool bold = false;
        bool doubleHeight = false;
        bool centred = false;
    };

    // The length of the command at `at`, its effect applied; 0 when it is
    // cut off by the end.
    qint64 command(QByteArrayView bytes, qint64 at);
    void open(qint64 offset);
    Section& section(qint64 offset);
    // A line feed: the pending text, or an empty line.
    void endLine(qint64 offset);
    // The pending text, if any, as a line of its own.
    void flushLine(qint64 offset);
    void addPicture(qint64 offset, QByteArrayView header, QByteArrayView dots);
    void selectCodePage(int number, qint64 offset);
    Row& annotation(qint64 offset, const QString& text);
    void flagCommand(qint64 offset, QByteArrayView command, const QString& what);

    Paper& paper;
    SectionSetup setup;
    bool inSection = false;
    Modes modes;
    Modes lineModes;
    QByteArray line;
    qint64 lineStart = -1;
    QByteArray codePage;
    std::optional<QStringDecoder> decoder;
};

} // namespace preview

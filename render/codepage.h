#pragma once

#include "asciiblocks.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringEncoder>
#include <QStringView>

#include <vector>

// The printer's character set. A receipt printer takes one byte per
// character in a code page (CP437, CP858, ISO-8859-15, ...): the print file
// is written in it, and text is made printable in it before it is laid out,
// so that columns count the characters that reach the paper.
class CodePage
{
public:
    // The character set of the process's locale: UTF-8 under a UTF-8
    // locale, ISO-8859-15 under it_IT@euro, ASCII under C; UTF-8 for one
    // that Qt has no encoder for. Text a document names no code page for is
    // printed in it.
    static QByteArray localeEncoding();

    // A code page by any name Qt's encoders know (CP437, IBM850, CP858,
    // ISO-8859-15, windows-1252, UTF-8, ...).
    explicit CodePage(const QByteArray& name = localeEncoding());

    bool isValid() const { return valid; }
    // The name as it was given.
    const QByteArray& name() const { return givenName; }
    // Whether ASCII is written as itself, one byte a character.
    bool writesAsciiAsItself() const { return asciiAsItself; }
    // Whether every character prints as itself (UTF-8): text is only composed.
    bool encodesEverything() const { return everything; }
    // Whether the page is UTF-8, the request's own encoding.
    bool isUtf8() const { return utf8; }
    QStringEncoder encoder() const;

    // Whether printable() may change `text`: a page that encodes everything
    // only composes, and text below U+0300 is composed already; other pages
    // may lack any character outside ASCII.
    bool needsPreparing(QStringView text) const
    {
        return AsciiBlocks::anyAtLeast(text.utf16(), text.size(), everything ? 0x300 : 0x80);
    }
    // The text as the printer prints it: composed (a letter and its
    // combining accent are one character), and each character the code page
    // lacks replaced by the closest text it has: the letter without its
    // accent, "EUR" for the euro sign, straight quotes, "-" for dashes,
    // "..." for the ellipsis, otherwise "?". Replacements are counted.
    QString printable(QStringView text);
    // The same, sharing the text when it is printable as it stands.
    QString printable(const QString& text);
    qsizetype replacements() const { return replaced; }

    // One character the page lacks and the text printed for it, at `at` in
    // `text`, the whole text as made printable.
    struct Replacement
    {
        char32_t character;
        QString printed;
        QString text;
        qsizetype at;
    };
    // Every replacement from now on is also added to `log` (null: none is).
    void logReplacements(std::vector<Replacement>* log) { replacementLog = log; }

private:
    bool canEncode(QStringView text);
    const QString& replacementOf(char32_t character);

    QByteArray givenName;
    bool valid = false;
    bool asciiAsItself = false;
    bool everything = false;
    bool utf8 = false;
    QHash<char32_t, QString> known; // empty text: the character prints as itself
    qsizetype replaced = 0;
    std::vector<Replacement>* replacementLog = nullptr;
};

// Widths as the printer counts them: one per character, whatever its size
// in UTF-16.
qsizetype printedLength(QStringView text);
// The first `count` printed characters, never half a character.
QStringView printedLeft(QStringView text, qsizetype count);

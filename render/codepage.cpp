#include "codepage.h"

#include <QStringList>

#include <clocale>
#include <cstring>

#include <langinfo.h>

using namespace Qt::StringLiterals;

namespace {

// What a locale name says of its character set, for a locale the system
// does not have: "it_IT.UTF-8" is UTF-8, "it_IT@euro" ISO-8859-15.
QByteArray codesetOfName(const QByteArray& locale)
{
    const qsizetype dot = locale.indexOf('.');
    const qsizetype at = locale.indexOf('@');
    if (dot >= 0)
        return locale.mid(dot + 1, at > dot ? at - dot - 1 : -1);
    if (locale.mid(at + 1) == "euro")
        return "ISO-8859-15"_ba;
    return "US-ASCII"_ba;
}

// Closest texts for characters that many code pages lack.
QString closestText(char32_t character)
{
    switch (character) {
    case 0x20ac: return u"EUR"_s;
    case 0x2018: case 0x2019: case 0x201a: case 0x201b: case 0x2032: return u"'"_s;
    case 0x201c: case 0x201d: case 0x201e: case 0x201f: case 0x00ab: case 0x00bb: case 0x2033:
        return u"\""_s;
    case 0x2010: case 0x2011: case 0x2012: case 0x2013: case 0x2014: case 0x2015: case 0x2212:
        return u"-"_s;
    case 0x2026: return u"..."_s;
    case 0x00a0: case 0x2007: case 0x202f: return u" "_s;
    case 0x00c6: return u"AE"_s;
    case 0x00e6: return u"ae"_s;
    case 0x0152: return u"OE"_s;
    case 0x0153: return u"oe"_s;
    case 0x00df: return u"ss"_s;
    case 0x00d8: return u"O"_s;
    case 0x00f8: return u"o"_s;
    case 0x0141: return u"L"_s;
    case 0x0142: return u"l"_s;
    default: return {};
    }
}

} // namespace

QByteArray CodePage::localeEncoding()
{
    static const QByteArray encoding = [] {
        QByteArray name = "US-ASCII"_ba;
        // The application object has set the locale from the environment
        // already, unless there is none or it failed: setting it costs as
        // much as the rest of a short print run's own work.
        const char* current = std::setlocale(LC_CTYPE, nullptr);
        const bool set = (current && std::strcmp(current, "C") != 0 && std::strcmp(current, "POSIX") != 0)
                         || std::setlocale(LC_ALL, "");
        if (set) {
            name = nl_langinfo(CODESET);
        } else {
            // A locale the system does not have still names its character set.
            for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
                const QByteArray locale = qgetenv(variable);
                if (!locale.isEmpty()) {
                    name = codesetOfName(locale);
                    break;
                }
            }
        }
        // Named as Qt names it: "US-ASCII" rather than "ANSI_X3.4-1968".
        const QStringEncoder encoder(name.constData());
        return encoder.isValid() ? QByteArray(encoder.name()) : "UTF-8"_ba;
    }();
    return encoding;
}

CodePage::CodePage(const QByteArray& name)
    : givenName(name)
{
    QStringEncoder encoder(name.constData(), QStringEncoder::Flag::Stateless);
    valid = encoder.isValid();
    if (!valid)
        return;
    const QByteArray ascii = encoder.encode(u" 09AZaz~"_s);
    asciiAsItself = ascii == " 09AZaz~";
    const QByteArray canonical = encoder.name();
    everything = canonical.startsWith("UTF-") || canonical == "GB18030";
    utf8 = canonical == "UTF-8";
}

QStringEncoder CodePage::encoder() const
{
    return QStringEncoder(givenName.constData());
}

bool CodePage::canEncode(QStringView text)
{
    // An encoder's error stays set once raised, so each question gets its
    // own; the answers are kept per character.
    QStringEncoder probe(givenName.constData(), QStringEncoder::Flag::Stateless);
    const QByteArray bytes = probe.encode(text);
    return !probe.hasError();
}

const QString& CodePage::replacementOf(char32_t character)
{
    auto found = known.constFind(character);
    if (found != known.cend())
        return *found;
    const QString text = QString::fromUcs4(&character, 1);
    QString replacement;
    if (!canEncode(text)) {
        replacement = closestText(character);
        if (replacement.isEmpty()) {
            // The letter without its accent, when the code page has it.
            for (QChar c : text.normalized(QString::NormalizationForm_D)) {
                if (c.category() != QChar::Mark_NonSpacing)
                    replacement += c;
            }
        }
        if (replacement.isEmpty() || replacement == text || !canEncode(replacement))
            replacement = u"?"_s;
    }
    return *known.insert(character, replacement);
}

QString CodePage::printable(const QString& text)
{
    return needsPreparing(text) ? printable(QStringView(text)) : text;
}

QString CodePage::printable(QStringView text)
{
    if (!needsPreparing(text))
        return text.toString();
    const QString composed = text.toString().normalized(QString::NormalizationForm_C);
    if (everything)
        return composed;
    QString printed;
    printed.reserve(composed.size());
    for (char32_t character : composed.toUcs4()) {
        if (character < 0x80) {
            printed += QChar(character);
            continue;
        }
        const QString& replacement = replacementOf(character);
        if (replacement.isEmpty()) {
            printed += QString::fromUcs4(&character, 1);
        } else {
            if (replacementLog)
                replacementLog->push_back({character, replacement, {}, printed.size()});
            printed += replacement;
            ++replaced;
        }
    }
    if (replacementLog) {
        for (auto entry = replacementLog->rbegin(); entry != replacementLog->rend() && entry->text.isNull(); ++entry)
            entry->text = printed;
    }
    return printed;
}

qsizetype printedLength(QStringView text)
{
    qsizetype length = text.size();
    for (qsizetype i = 1; i < text.size(); ++i) {
        if (text[i].isLowSurrogate() && text[i - 1].isHighSurrogate())
            --length;
    }
    return length;
}

QStringView printedLeft(QStringView text, qsizetype count)
{
    qsizetype end = 0;
    for (qsizetype printed = 0; end < text.size() && printed < count; ++printed)
        end += text[end].isHighSurrogate() && end + 1 < text.size() && text[end + 1].isLowSurrogate() ? 2 : 1;
    return text.first(end);
}

#pragma once

#include "confignode.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>
#include <vector>

namespace libconfig {

// The "cfg" reader's input: the whole file in memory and the reader's place
// in it. Bytes are ISO 8859-1 characters. Of them only ':', '=' and '}' are
// structural; everything between two of them is the text of the next name.
class CfgStream
{
public:
    void open(QByteArray bytes);
    // Releases the bytes; a closed stream is at its end.
    void close();
    bool atEnd() const;

    // The text from the current place up to the next structural byte, which
    // is consumed and returned in `structural`; at the end of the input the
    // rest is returned and `structural` is NUL.
    QByteArrayView readText(char& structural);
    // A value: everything up to the next ';' (consumed) or the end.
    QByteArrayView readValue();
    // Consumes everything up to and including the next `c`; false when the
    // input ends first.
    bool skipPast(char c);

    qsizetype position() const { return m_position; }
    // Where a view given out by readText or readValue starts in the input.
    qsizetype offsetOf(QByteArrayView text) const { return text.data() - bytes.constData(); }

private:
    QByteArray bytes;
    qsizetype m_position = 0;
};

// A name as the reader keeps it: cut at a NUL (names were once C strings),
// trimmed of blanks, tabs, line ends and the no-break space.
QString cfgName(QByteArrayView text);
// A value: trimmed like a name, then stripped of every double quote,
// wherever it stands, so that blanks inside quotes survive.
QString cfgValue(QByteArrayView text);

// Builds the tree as the reader meets groups and settings. A group enters
// the tree only with its first member (a setting, or the ':' of a nested
// group), so a group with nothing in it never appears. Groups nest as deep
// as the file says; the open ones are kept on a stack, not in recursive calls.
class CfgTreeBuilder
{
public:
    // The file element, named after the file, hangs under `document` once
    // the file has a member at the top level.
    CfgTreeBuilder(ConfigNode& document, const QString& fileName);

    void openGroup(const QString& name);
    void setSetting(const QString& key, const QString& value);
    // False at the top level, where there is no group to close.
    bool closeGroup();

private:
    void attachInnermost();

    struct OpenGroup
    {
        std::unique_ptr<ConfigNode> unattached; // owns the element until it enters the tree
        ConfigNode* element;
    };
    ConfigNode& document;
    std::vector<OpenGroup> open;
};

// The "cfg" grammar knows three structural characters; the text before each
// is the name it applies to:
//   name ':' ... '{'     opens a group (whatever stands before the '{' is skipped)
//   name '=' value ';'   sets a key in the innermost open group
//   '}' ... ';'          closes the innermost group; at the top level it ends the file
// There are no comments and no escapes, and no syntax errors: every fault
// in the text has the effect these steps give it. The reader hears of each
// step together with where its bytes lie in the input:
//   bool openGroup(QByteArrayView name, qsizetype nameAt, qsizetype bodyAt)
//   void setSetting(QByteArrayView name, qsizetype nameAt, QByteArrayView value, qsizetype valueAt, qsizetype endAt)
//   bool closeGroup(qsizetype braceAt, qsizetype endAt)
// bodyAt is just after the group's '{', endAt just after a ';'. Reading stops
// where openGroup or closeGroup answers false; the answer is then false.
template<class Reader>
bool parseCfg(CfgStream& stream, Reader& reader)
{
    char structural = '\0';
    while (!stream.atEnd()) {
        const QByteArrayView text = stream.readText(structural);
        switch (structural) {
        case ':':
            stream.skipPast('{');
            if (!reader.openGroup(text, stream.offsetOf(text), stream.position()))
                return false;
            break;
        case '=': {
            const QByteArrayView value = stream.readValue();
            reader.setSetting(text, stream.offsetOf(text), value, stream.offsetOf(value), stream.position());
            break;
        }
        case '}': {
            const qsizetype braceAt = stream.position() - 1;
            stream.skipPast(';');
            if (!reader.closeGroup(braceAt, stream.position()))
                return false;
            break;
        }
        default:
            break; // text after the last structural character is not kept
        }
    }
    return true;
}

} // namespace libconfig

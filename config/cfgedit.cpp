#include "cfgedit.h"

#include "cfgreader.h"
#include "config.h"

#include <QRegularExpression>
#include <QSaveFile>
#include <QStringList>

#include <vector>

namespace libconfig {

using namespace Qt::StringLiterals;

namespace {

// The bytes the reader trims from names and values.
bool isBlank(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\v' || byte == '\f' || byte == '\r'
        || byte == 0xA0;
}

struct GroupPlace
{
    QString name;
    int parent;             // -1 at the top level
    qsizetype startAt;      // the name's first byte
    qsizetype braceAt = -1; // its closing '}'; -1 when the file ends first
    int lastSetting = -1;
    int firstGroup = -1;
    // The last member, a setting or a group, from its name to its ';'.
    qsizetype lastMemberStart = -1;
    qsizetype lastMemberEnd = -1;
};

struct SettingPlace
{
    QString name;
    int group; // -1 outside groups
    qsizetype startAt;
    qsizetype valueAt;
    qsizetype valueEnd;
    qsizetype endAt; // just after its ';'
};

// Where the groups and settings of a "cfg" text lie, in the order the
// reader meets them.
class CfgOutline
{
public:
    explicit CfgOutline(const QByteArray& text)
        : text(text)
    {
        CfgStream stream;
        stream.open(text);
        parseCfg(stream, *this);
    }

    bool openGroup(QByteArrayView name, qsizetype nameAt, qsizetype)
    {
        const int parent = open.empty() ? -1 : open.back();
        const int index = int(groups.size());
        groups.push_back({cfgName(name), parent, firstByte(nameAt)});
        if (parent >= 0 && groups[parent].firstGroup < 0)
            groups[parent].firstGroup = index;
        open.push_back(index);
        return true;
    }

    void setSetting(QByteArrayView name, qsizetype nameAt, QByteArrayView value, qsizetype valueAt, qsizetype endAt)
    {
        const int group = open.empty() ? -1 : open.back();
        const qsizetype start = firstByte(nameAt);
        settings.push_back({cfgName(name), group, start, valueAt, valueAt + value.size(), endAt});
        if (group >= 0) {
            groups[group].lastSetting = int(settings.size()) - 1;
            noteMember(groups[group], start, endAt);
        }
    }

    bool closeGroup(qsizetype braceAt, qsizetype endAt)
    {
        if (open.empty())
            return false;
        GroupPlace& group = groups[open.back()];
        group.braceAt = braceAt;
        open.pop_back();
        if (group.parent >= 0)
            noteMember(groups[group.parent], group.startAt, endAt);
        return true;
    }

    // A group the reader keeps: one with a setting or a group in it.
    bool hasMember(int group) const { return groups[group].lastMemberStart >= 0 || groups[group].firstGroup >= 0; }

    std::vector<GroupPlace> groups;
    std::vector<SettingPlace> settings;

private:
    qsizetype firstByte(qsizetype at) const
    {
        while (at < text.size() && isBlank(text[at]))
            ++at;
        return at;
    }

    static void noteMember(GroupPlace& group, qsizetype start, qsizetype end)
    {
        group.lastMemberStart = start;
        group.lastMemberEnd = end;
    }

    const QByteArray& text;
    std::vector<int> open;
};

// A name the "cfg" reader reads back as written and that a dotted key can
// name: no structural or quoting byte, no blank at either end.
bool isCfgName(const QString& name)
{
    static const QRegularExpression pattern(u"^[^\\s\\x{a0}:={};\"](?:[^:={};\"]*[^\\s\\x{a0}:={};\"])?$"_s);
    return pattern.match(name).hasMatch() && !name.contains(QChar(0));
}

// Written bare when it is a whole number, as the suite's files have numbers;
// quoted otherwise, so that blanks at its ends survive.
QByteArray settingText(const QString& name, const QString& value)
{
    static const QRegularExpression wholeNumber(u"^-?[0-9]+$"_s);
    const QByteArray shown = wholeNumber.match(value).hasMatch() ? value.toLatin1() : '"' + value.toLatin1() + '"';
    return name.toLatin1() + " = " + shown + ';';
}

// The text of a new setting inside new groups, one line each, every group
// four blanks further in.
QList<QByteArray> newMemberLines(const QStringList& groups, const QString& name, const QString& value)
{
    QList<QByteArray> lines;
    for (qsizetype i = 0; i < groups.size(); ++i)
        lines << QByteArray(4 * i, ' ') + groups[i].toLatin1() + " : {";
    lines << QByteArray(4 * groups.size(), ' ') + settingText(name, value);
    for (qsizetype i = groups.size() - 1; i >= 0; --i)
        lines << QByteArray(4 * i, ' ') + "};";
    return lines;
}

class CfgEditor
{
public:
    explicit CfgEditor(const QByteArray& text)
        : text(text)
        , outline(text)
    {
        // New lines end as the file's first line does.
        const qsizetype firstLineEnd = text.indexOf('\n');
        if (firstLineEnd > 0 && text[firstLineEnd - 1] == '\r')
            lineEnd = "\r\n";
    }

    // Whether only blanks and tabs stand before `at` on its line; `indent`
    // is then what they are.
    bool onOwnLine(qsizetype at, QByteArray* indent) const
    {
        qsizetype lineStart = at;
        while (lineStart > 0 && text[lineStart - 1] != '\n')
            --lineStart;
        for (qsizetype i = lineStart; i < at; ++i)
            if (text[i] != ' ' && text[i] != '\t')
                return false;
        *indent = text.mid(lineStart, at - lineStart);
        return true;
    }

    static QByteArray joinedOnOneLine(const QList<QByteArray>& lines)
    {
        QByteArrayList trimmed;
        for (const QByteArray& line : lines)
            trimmed << line.trimmed();
        return trimmed.join(' ');
    }

    // After a member that runs from `start` to `end`: on lines of their own
    // when the member has its own line, else on the member's line.
    QByteArray insertAfter(qsizetype start, qsizetype end, const QList<QByteArray>& lines) const
    {
        QByteArray indent;
        if (!onOwnLine(start, &indent))
            return spliced(end, 0, ' ' + joinedOnOneLine(lines));
        QByteArray inserted;
        for (const QByteArray& line : lines)
            inserted += lineEnd + indent + line;
        return spliced(end, 0, inserted);
    }

    // Before a member that starts at `start`, in the same layout.
    QByteArray insertBefore(qsizetype start, const QList<QByteArray>& lines) const
    {
        QByteArray indent;
        if (!onOwnLine(start, &indent))
            return spliced(start, 0, joinedOnOneLine(lines) + ' ');
        QByteArray inserted;
        for (const QByteArray& line : lines)
            inserted += indent + line + lineEnd;
        return spliced(start - indent.size(), 0, inserted);
    }

    // Into a group with nothing in it: one level further in than its '}'.
    QByteArray insertIntoEmpty(const GroupPlace& group, const QList<QByteArray>& lines) const
    {
        const qsizetype brace = group.braceAt < 0 ? text.size() : group.braceAt;
        QByteArray indent;
        if (group.braceAt < 0 || !onOwnLine(brace, &indent)) {
            const bool spaced = brace > 0 && isBlank(text[brace - 1]);
            return spliced(brace, 0, (spaced ? "" : " ") + joinedOnOneLine(lines) + ' ');
        }
        QByteArray inserted;
        for (const QByteArray& line : lines)
            inserted += indent + "    " + line + lineEnd;
        return spliced(brace - indent.size(), 0, inserted);
    }

    QByteArray appendAtEnd(const QList<QByteArray>& lines) const
    {
        const QByteArray separator = text.isEmpty() || text.endsWith('\n') ? QByteArray() : lineEnd;
        return text + separator + lines.join(lineEnd) + lineEnd;
    }

    // The value's bytes without the blanks around them, and inside its
    // quotes when it has them; a value that needs quotes gets them.
    QByteArray replaceValue(const SettingPlace& setting, const QString& value) const
    {
        qsizetype begin = setting.valueAt;
        qsizetype end = setting.valueEnd;
        while (begin < end && isBlank(text[begin]))
            ++begin;
        while (end > begin && isBlank(text[end - 1]))
            --end;
        const QByteArray bytes = value.toLatin1();
        if (end - begin >= 2 && text[begin] == '"' && text[end - 1] == '"')
            return spliced(begin + 1, end - begin - 2, bytes);
        const bool needsQuotes = !bytes.isEmpty() && (isBlank(bytes.front()) || isBlank(bytes.back()));
        return spliced(begin, end - begin, needsQuotes ? '"' + bytes + '"' : bytes);
    }

    QString valueOf(const SettingPlace& setting) const
    {
        return cfgValue(QByteArrayView(text).sliced(setting.valueAt, setting.valueEnd - setting.valueAt));
    }

    QByteArray spliced(qsizetype at, qsizetype length, const QByteArray& with) const
    {
        return QByteArray(text).replace(at, length, with);
    }

    const QByteArray& text;
    CfgOutline outline;
    QByteArray lineEnd = "\n";
};

// The one top-level group that lookup() searches: the first that the reader
// keeps, or failing that the first there is; -1 for none.
int topGroup(const CfgOutline& outline)
{
    int first = -1;
    for (int g = 0; g < int(outline.groups.size()); ++g) {
        if (outline.groups[g].parent >= 0)
            continue;
        if (outline.hasMember(g))
            return g;
        if (first < 0)
            first = g;
    }
    return first;
}

std::optional<QByteArray> edited(const CfgEditor& editor, const QStringList& fields, const QString& value,
                                 QString* error)
{
    const CfgOutline& outline = editor.outline;
    const QStringList path = fields.first(fields.size() - 1);
    const QString& name = fields.last();
    const int top = topGroup(outline);

    // How far down the path each group lies, or -1 off it; groups come
    // after their parents.
    std::vector<int> level(outline.groups.size(), -1);
    int deepest = -1;
    for (int g = 0; g < int(outline.groups.size()); ++g) {
        const GroupPlace& group = outline.groups[g];
        const bool belowPath = group.parent < 0 ? g == top : level[group.parent] >= 0;
        const int at = group.parent < 0 ? 0 : level[group.parent] + 1;
        if (!belowPath || at >= path.size() || group.name != path[at])
            continue;
        level[g] = at;
        if (deepest < 0 || at > level[deepest])
            deepest = g;
    }

    // The setting lookup() answers from: in each group on the path the
    // last of the name, and of those the first non-empty one in file order,
    // or else the first there is.
    std::vector<const SettingPlace*> inGroup(outline.groups.size(), nullptr);
    for (const SettingPlace& setting : outline.settings)
        if (setting.group >= 0 && level[setting.group] == path.size() - 1 && setting.name == name)
            inGroup[setting.group] = &setting;
    const SettingPlace* found = nullptr;
    for (const SettingPlace* setting : inGroup) {
        if (!setting)
            continue;
        if (!found)
            found = setting;
        if (!editor.valueOf(*setting).isEmpty()) {
            found = setting;
            break;
        }
    }
    if (found)
        return editor.replaceValue(*found, value);

    if (deepest < 0) {
        if (top >= 0) {
            *error = u"the file's top-level group is \"%1\", not \"%2\""_s.arg(outline.groups[top].name, path.first());
            return std::nullopt;
        }
        return editor.appendAtEnd(newMemberLines(path, name, value));
    }
    const GroupPlace& group = outline.groups[deepest];
    const QStringList missing = path.sliced(level[deepest] + 1);
    const QList<QByteArray> lines = newMemberLines(missing, name, value);
    if (missing.isEmpty() && group.lastSetting >= 0) {
        const SettingPlace& last = outline.settings[group.lastSetting];
        return editor.insertAfter(last.startAt, last.endAt, lines);
    }
    if (missing.isEmpty() && group.firstGroup >= 0)
        return editor.insertBefore(outline.groups[group.firstGroup].startAt, lines);
    if (group.lastMemberStart >= 0)
        return editor.insertAfter(group.lastMemberStart, group.lastMemberEnd, lines);
    return editor.insertIntoEmpty(group, lines);
}

} // namespace

std::optional<QByteArray> setCfgSetting(const QByteArray& text, const QString& key, const QString& value,
                                        QString* error)
{
    const QStringList fields = key.split(u'.');
    if (fields.size() < 2) {
        *error = u"\"%1\" is not a key: a key names groups and a setting, such as zentaro.logger.level"_s.arg(key);
        return std::nullopt;
    }
    for (const QString& field : fields) {
        if (!isCfgName(field)) {
            *error = u"\"%1\" is not a key: \"%2\" cannot be a name in a cfg file"_s.arg(key, field);
            return std::nullopt;
        }
    }
    if (value.contains(u'"') || value.contains(u';') || value.contains(QChar(0))) {
        *error = u"a value in a cfg file cannot hold '\"' or ';'"_s;
        return std::nullopt;
    }
    for (QChar c : value) {
        if (c.unicode() > 0xFF) {
            *error = u"a value in a cfg file holds ISO 8859-1 characters only"_s;
            return std::nullopt;
        }
    }

    std::optional<QByteArray> result = edited(CfgEditor(text), fields, value, error);
    if (!result)
        return std::nullopt;
    // What the reader makes of the new text is the test of the edit: an odd
    // layout (a group closed twice, a setting hidden by another) is caught
    // here rather than written.
    Config check;
    check.readData(*result, u"cfg"_s);
    if (!value.isEmpty() && check.lookup(key) != value) {
        *error = u"%1 would not read back as set in this file's layout"_s.arg(key);
        return std::nullopt;
    }
    return result;
}

bool replaceFileContents(const QString& path, const QByteArray& bytes, QString* error)
{
    QSaveFile file(path);
    // Written in place, a file would be left half-written by a failure; a
    // folder that cannot take the temporary file is an error instead.
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        *error = u"cannot write %1: %2"_s.arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace libconfig

// The writers of the configuration store: the tree back to "cfg" text, to
// XML, and as a plain listing on standard output.

#include "config.h"

#include "diagnostics.h"
#include "textencoding.h"
#include "treewalk.h"

#include <QSaveFile>
#include <QStringEncoder>
#include <QTextStream>

#include <algorithm>
#include <cstdio>

namespace libconfig {

using namespace Qt::StringLiterals;

namespace {

// Every level of nesting is written four blanks further in, down to a
// floor: deeper levels stay there, so that the text written stays
// proportional to the tree however deep the tree nests. The blanks are
// views into one text, not built for each line.
constexpr std::size_t deepestIndentedLevel = 64;

QStringView indentation(std::size_t depth)
{
    static const QString blanks(qsizetype(4 * deepestIndentedLevel), u' ');
    return QStringView(blanks).first(qsizetype(4 * std::min(depth, deepestIndentedLevel)));
}

const ConfigNode* childAt(const ConfigNode* node, std::size_t i)
{
    return i < node->children().size() ? node->children()[i].get() : nullptr;
}

// The elements under `top`, each entered before its children and left after
// them; an element's settings are its attributes, not nodes of their own.
template<class Enter, class Leave>
void walkElements(const ConfigNode* top, Enter enter, Leave leave)
{
    walkTree(
        top, childAt,
        [&enter](const ConfigNode* node, std::size_t depth) {
            enter(*node, depth);
            return true;
        },
        [&leave](const ConfigNode* node, std::size_t depth) { leave(*node, depth); });
}

// One setting in the "cfg" syntax. The value is always quoted, so that
// blanks at its ends survive being read back.
void writeCfgSetting(QTextStream& ts, QStringView indent, const std::pair<QString, QString>& setting)
{
    ts << indent << setting.first << " = \"" << setting.second << "\";\n";
}

// The file element's own settings open both kinds of file, in the "cfg"
// syntax and without indentation.
void writeFileSettings(QTextStream& ts, const ConfigNode& fileElement)
{
    for (const auto& setting : fileElement.attributes())
        writeCfgSetting(ts, {}, setting);
}

// Writes a whole file through a save file: the text goes to a temporary
// file that replaces `name` only once everything was written, so a failed
// write leaves the old file as it was.
template<class WriteBody>
bool writeTextFile(const QString& name, QByteArrayView operation, QStringConverter::Encoding encoding,
                   WriteBody writeBody)
{
    QSaveFile file(name);
    // Never written in place: a failure would leave the file half-written,
    // and a name that is another link to the file being read would be
    // written through. A folder that cannot take the temporary file is an
    // error instead.
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly)) {
        printDiagnostic({"Error in the method Config::", operation, "( ", name.toLocal8Bit(), " ): Unable To Open File"});
        return false;
    }
    QTextStream ts(&file);
    ts.setEncoding(encoding);
    writeBody(ts);
    ts.flush();
    if (ts.status() != QTextStream::Ok || !file.commit()) {
        printDiagnostic({"Error in the method Config::", operation, "( ", name.toLocal8Bit(), " ): Unable To Write File"});
        return false;
    }
    return true;
}

// A whole text: the file element's own settings, then its first group
// written by `writeGroup`; later top-level groups are not written.
template<class WriteGroup>
void writeDocument(const ConfigNode* root, QTextStream& ts, WriteGroup writeGroup)
{
    const ConfigNode* fileElement = root ? root->firstChild() : nullptr;
    if (!fileElement)
        return;
    writeFileSettings(ts, *fileElement);
    writeGroup(fileElement->firstChild(), ts);
}

template<class WriteGroup>
bool writeTree(const ConfigNode* root, const QString& name, QByteArrayView operation,
               QStringConverter::Encoding encoding, WriteGroup writeGroup)
{
    return writeTextFile(name, operation, encoding,
                         [&](QTextStream& ts) { writeDocument(root, ts, writeGroup); });
}

} // namespace

bool Config::buildConfigFile(const QString& name) const
{
    return writeTree(documentRoot.get(), name.isEmpty() ? fileName : name, "buildConfigFile", textEncoding(u"cfg"),
                     [this](const ConfigNode* group, QTextStream& ts) { buildConfigFile(group, ts); });
}

QByteArray Config::cfgText() const
{
    QByteArray bytes;
    QTextStream ts(&bytes);
    ts.setEncoding(textEncoding(u"cfg"));
    writeDocument(documentRoot.get(), ts,
                  [this](const ConfigNode* group, QTextStream& out) { buildConfigFile(group, out); });
    ts.flush();
    return bytes;
}

// A group header ends with a blank after the colon and its brace stands on
// a line of its own; an empty line follows every group.
void Config::buildConfigFile(const ConfigNode* node, QTextStream& ts) const
{
    walkElements(
        node,
        [&ts](const ConfigNode& group, std::size_t depth) {
            const QStringView indent = indentation(depth);
            ts << indent << group.tagName() << ": \n" << indent << "{\n";
            const QStringView settingIndent = indentation(depth + 1);
            for (const auto& setting : group.attributes())
                writeCfgSetting(ts, settingIndent, setting);
        },
        [&ts](const ConfigNode&, std::size_t depth) { ts << indentation(depth) << "};\n\n"; });
}

// A tree read from XML has no settings on its file element; any other tree
// keeps them, written as "cfg" lines, at the price of well-formed XML.
bool Config::buildConfigXmlFile(const QString& name) const
{
    return writeTree(documentRoot.get(), name.isEmpty() ? fileName : name, "buildConfigXmlFile",
                     textEncoding(u"xml"),
                     [this](const ConfigNode* element, QTextStream& ts) { buildConfigXmlFile(element, ts); });
}

// Each element starts on a fresh line and each of its settings stands on a
// line of its own inside the start tag. Names and values are written as they
// are, without escapes.
void Config::buildConfigXmlFile(const ConfigNode* node, QTextStream& ts) const
{
    walkElements(
        node,
        [&ts](const ConfigNode& element, std::size_t depth) {
            ts << '\n' << indentation(depth) << '<' << element.tagName();
            const QStringView settingIndent = indentation(depth + 1);
            for (const auto& [name, value] : element.attributes())
                ts << '\n' << settingIndent << name << " = \"" << value << '"';
            ts << ">\n";
        },
        [&ts](const ConfigNode& element, std::size_t depth) {
            ts << indentation(depth) << "</" << element.tagName() << ">\n";
        });
}

void Config::printConfigTree() const
{
    std::fputs("Tree \n", stdout);
    std::fflush(stdout);
    if (documentRoot)
        printConfigTree(documentRoot->firstChild());
}

// Names and values go out in the bytes of the file they came from.
void Config::printConfigTree(const ConfigNode* node) const
{
    QStringEncoder encode(textEncoding(fileType));
    walkElements(
        node,
        [&encode](const ConfigNode& element, std::size_t) {
            QString text = element.tagName() + u'\n';
            for (const auto& [name, value] : element.attributes())
                text += name + " = "_L1 + value + u'\n';
            const QByteArray bytes = encode(text);
            std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
        },
        [](const ConfigNode&, std::size_t) {});
    std::fflush(stdout);
}

} // namespace libconfig

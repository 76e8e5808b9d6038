#include "config.h"

#include "diagnostics.h"
#include "emptytext.h"
#include "xmlreader.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QVarLengthArray>

#include <optional>
#include <vector>

namespace libconfig {

using namespace Qt::StringLiterals;

namespace {

// The whole of a file, or nothing when it is not a regular file that can be
// read: a FIFO would block the run at open, and a directory or a device holds
// no configuration.
std::optional<QByteArray> readRegularFile(const QString& name)
{
    if (!QFileInfo(name).isFile())
        return std::nullopt;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

} // namespace

Config::Config() = default;

Config::Config(const QString& fileName, const QString& fileType)
{
    constructor(fileName, fileType);
}

Config::~Config()
{
    closeFile();
}

void Config::readFile(const QString& fileName, const QString& fileType)
{
    constructor(fileName, fileType);
}

void Config::startDocument(const QString& fileName, const QString& fileType)
{
    this->fileName = fileName;
    this->fileType = fileType;
    documentRoot = std::make_unique<ConfigNode>();
    oversizedLine = -1;
}

void Config::constructor(const QString& fileName, const QString& fileType)
{
    startDocument(fileName, fileType);
    if (fileType == "cfg"_L1)
        loadFile();
    else if (fileType == "xml"_L1)
        loadXmlFile();
}

void Config::readData(const QByteArray& bytes, const QString& fileType, const QString& fileName)
{
    startDocument(fileName, fileType);
    if (fileType == "cfg"_L1) {
        stream.open(bytes);
        readCfgStream();
    } else if (fileType == "xml"_L1) {
        readXml(bytes);
    }
}

bool Config::openFile()
{
    return openFile(fileName);
}

bool Config::openFile(const QString& name)
{
    // A file that cannot be opened reads as empty, whatever an earlier file
    // left in the stream.
    closeFile();
    if (std::optional<QByteArray> bytes = readRegularFile(name)) {
        stream.open(std::move(*bytes));
        return true;
    }
    // The suite's scripts read this exact line; the class it names is the
    // suite's, not one of ours.
    printDiagnostic({"Error in the method FileReader::open( ", name.toLocal8Bit(), " ): File Not Found"});
    return false;
}

void Config::closeFile()
{
    stream.close();
}

bool Config::jump(char c)
{
    return stream.skipPast(c);
}

void Config::loadFile()
{
    openFile();
    readCfgStream();
}

namespace {

// Builds the tree from what parseCfg meets.
class CfgTreeReader
{
public:
    CfgTreeReader(ConfigNode& document, const QString& fileName)
        : tree(document, fileName)
    {
    }

    bool openGroup(QByteArrayView name, qsizetype, qsizetype)
    {
        tree.openGroup(cfgName(name));
        return true;
    }
    void setSetting(QByteArrayView name, qsizetype, QByteArrayView value, qsizetype, qsizetype)
    {
        tree.setSetting(cfgName(name), cfgValue(value));
    }
    bool closeGroup(qsizetype, qsizetype) { return tree.closeGroup(); }

private:
    CfgTreeBuilder tree;
};

} // namespace

void Config::readCfgStream()
{
    CfgTreeReader reader(*documentRoot, fileName);
    // After a '}' at the top level the rest of the file stays unread until
    // the stream is closed.
    if (parseCfg(stream, reader))
        closeFile();
}

void Config::loadXmlFile()
{
    // A missing or unreadable file loads nothing and reports nothing.
    if (std::optional<QByteArray> bytes = readRegularFile(fileName))
        readXml(*bytes);
}

namespace {

// The "xml" reader's handler: elements become groups, attributes become
// settings; text, comments and processing instructions are not kept.
class ConfigTreeHandler : public XmlContentHandler
{
public:
    explicit ConfigTreeHandler(ConfigNode& fileElement)
        : open{&fileElement}
    {
    }

    bool startElement(const QString&, const QString&, const QString& qName,
                      const XmlAttributes& atts) override
    {
        auto element = std::make_unique<ConfigNode>(qName);
        for (const XmlAttribute& attribute : atts)
            element->setAttribute(attribute.qualifiedName(), attribute.value().toString());
        open.push_back(open.back()->appendChild(std::move(element)));
        return true;
    }

    bool endElement(const QString&, const QString&, const QString&) override
    {
        open.pop_back();
        return true;
    }

private:
    std::vector<ConfigNode*> open;
};

} // namespace

// The file element enters the tree only when the whole file parsed.
void Config::readXml(const QByteArray& bytes)
{
    auto fileElement = std::make_unique<ConfigNode>(fileName);
    ConfigTreeHandler handler(*fileElement);
    QBuffer input;
    input.setData(bytes);
    input.open(QIODevice::ReadOnly);
    XmlReader reader(handler);
    if (reader.parse(&input))
        documentRoot->appendChild(std::move(fileElement));
    else if (reader.markupTooLarge())
        oversizedLine = reader.faultLine();
}

// Only the first group under the file element is ever searched: the first
// field of a key names that group.
QString Config::lookup(const QString& key) const
{
    if (!documentRoot)
        return emptyText();
    const ConfigNode* fileElement = documentRoot->firstChild();
    if (!fileElement)
        return emptyText();
    return lookup(fileElement->firstChild(), key);
}

QString Config::lookup(const ConfigNode* node, const QString& key) const
{
    // The document root is not an element of its own: nothing matches it.
    if (!node || node == documentRoot.get())
        return emptyText();
    // The fields are views into the key, split at every '.'; empty fields
    // count as fields.
    QVarLengthArray<QStringView, 8> fields;
    const QStringView whole(key);
    qsizetype begin = 0;
    for (qsizetype i = 0; i < whole.size(); ++i) {
        if (whole[i] == u'.') {
            fields.append(whole.sliced(begin, i - begin));
            begin = i + 1;
        }
    }
    fields.append(whole.sliced(begin));
    const QString found = lookupFields(node, fields.constData(), fields.size());
    return found.isEmpty() ? emptyText() : found;
}

// Field n of the key must name the element n levels below the start; once
// the field after next is empty, the next field names an attribute. Groups
// of the same name are searched in file order and the first non-empty value
// wins, so an empty value counts as absent. Iterative, so the search depth
// does not depend on the call stack.
QString Config::lookupFields(const ConfigNode* start, const QStringView* fields, qsizetype count) const
{
    auto field = [fields, count](qsizetype i) { return i < count ? fields[i] : QStringView(); };

    struct Frame {
        const ConfigNode* element;
        qsizetype level;
        std::size_t nextChild;
    };
    QVarLengthArray<Frame, 8> path;

    // Either answers from the element's attributes or leaves the element on
    // the path so that its children are searched.
    auto visit = [&](const ConfigNode* element, qsizetype level) -> QString {
        const QString& tag = element->tagName();
        const QStringView wanted = field(level);
        if (tag.size() != wanted.size() || QStringView(tag) != wanted)
            return {};
        if (field(level + 2).isEmpty())
            return element->attribute(field(level + 1));
        path.push_back({element, level, 0});
        return {};
    };

    QString found = visit(start, 0);
    while (found.isEmpty() && !path.empty()) {
        Frame& top = path.back();
        const auto& children = top.element->children();
        if (top.nextChild == children.size()) {
            path.pop_back();
            continue;
        }
        const ConfigNode* child = children[top.nextChild++].get();
        const qsizetype childLevel = top.level + 1;
        found = visit(child, childLevel);
    }
    return found;
}

const ConfigNode* Config::document() const
{
    return documentRoot.get();
}

} // namespace libconfig

#include "config.h"

#include <QFile>
#include <QXmlStreamReader>

#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace libconfig {

namespace {

// Callers tell a missing setting by its emptiness, but some also ask isNull(),
// so "not found" is always an empty string that is not null.
QString emptyText()
{
    return QStringLiteral("");
}

// White space of the "cfg" format: the C blanks plus the ISO 8859-1 no-break
// space. Not QString::trimmed(), which would also take 0x85.
bool isCfgSpace(char c)
{
    switch (static_cast<unsigned char>(c)) {
    case ' ':
    case '\t':
    case '\n':
    case '\v':
    case '\f':
    case '\r':
    case 0xA0:
        return true;
    default:
        return false;
    }
}

// Names and values were once held in a C string, so a NUL ends them; the
// rest is trimmed and read as ISO 8859-1.
QString cfgText(const QByteArray& raw)
{
    qsizetype end = raw.indexOf('\0');
    if (end < 0)
        end = raw.size();
    qsizetype begin = 0;
    while (begin < end && isCfgSpace(raw[begin]))
        ++begin;
    while (end > begin && isCfgSpace(raw[end - 1]))
        --end;
    return QString::fromLatin1(raw.constData() + begin, end - begin);
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

void Config::constructor(const QString& fileName, const QString& fileType)
{
    this->fileName = fileName;
    this->fileType = fileType;
    documentRoot = std::make_unique<ConfigNode>();
    if (fileType == QLatin1String("cfg"))
        loadFile();
    else if (fileType == QLatin1String("xml"))
        loadXmlFile();
}

bool Config::openFile()
{
    return openFile(fileName);
}

bool Config::openFile(const QString& name)
{
    // A reader that stopped at a top-level '}' leaves the stream open; a
    // second read must not fail on that.
    closeFile();
    stream.clear();
    stream.open(QFile::encodeName(name).toStdString(), std::ios::in | std::ios::binary);
    if (stream.is_open()) {
        // One read of the whole file; the reader then works on memory.
        stream.seekg(0, std::ios::end);
        const std::streamoff size = stream.tellg();
        stream.seekg(0, std::ios::beg);
        content.resize(size > 0 ? std::size_t(size) : 0);
        stream.read(content.data(), std::streamsize(content.size()));
        content.resize(std::size_t(stream.gcount()));
        position = 0;
        return true;
    }
    const QByteArray shown = name.toLocal8Bit();
    std::cout << "Error in the method FileReader::open( ";
    std::cout.write(shown.constData(), shown.size());
    std::cout << " ): File Not Found" << std::endl;
    return false;
}

void Config::closeFile()
{
    if (stream.is_open())
        stream.close();
}

// A stream that never opened delivers nothing, so it reads as end of file
// and the reader ends with an empty document.
int Config::readChar()
{
    return position < content.size() ? static_cast<unsigned char>(content[position++]) : std::char_traits<char>::eof();
}

bool Config::jump(char c)
{
    for (int got = readChar(); got != std::char_traits<char>::eof(); got = readChar()) {
        if (static_cast<char>(got) == c)
            return true;
    }
    return false;
}

// The "cfg" reader. Groups nest as deep as the file says, so the open groups
// are kept on an explicit stack rather than in recursive calls. A group's
// element is held aside and enters the tree only when its first member (a
// setting or a nested group's ':') is met: a group with no members never
// appears.
void Config::loadFile()
{
    openFile();

    struct OpenGroup {
        std::unique_ptr<ConfigNode> unattached; // owns the element until it enters the tree
        ConfigNode* element;
    };
    std::vector<OpenGroup> open;
    auto fileElement = std::make_unique<ConfigNode>(fileName);
    ConfigNode* fileRaw = fileElement.get();
    open.push_back({std::move(fileElement), fileRaw});

    auto attachInnermost = [&] {
        OpenGroup& group = open.back();
        if (!group.unattached)
            return;
        ConfigNode* parent = open.size() == 1 ? documentRoot.get() : open[open.size() - 2].element;
        parent->appendChild(std::move(group.unattached));
    };

    const int eof = std::char_traits<char>::eof();
    std::size_t textBegin = position; // everything since the last structural character
    auto textSince = [&](std::size_t begin, std::size_t end) {
        return QByteArray::fromRawData(content.data() + begin, qsizetype(end - begin));
    };
    for (int c = readChar(); c != eof; c = readChar()) {
        switch (c) {
        case ':': {
            const QString name = cfgText(textSince(textBegin, position - 1));
            jump('{');
            attachInnermost();
            auto group = std::make_unique<ConfigNode>(name);
            ConfigNode* raw = group.get();
            open.push_back({std::move(group), raw});
            textBegin = position;
            break;
        }
        case '=': {
            const QString key = cfgText(textSince(textBegin, position - 1));
            std::size_t end = content.find(';', position);
            if (end == std::string::npos)
                end = content.size();
            QString value = cfgText(textSince(position, end));
            position = end < content.size() ? end + 1 : end;
            value.remove(QLatin1Char('"'));
            open.back().element->setAttribute(key, value);
            attachInnermost();
            textBegin = position;
            break;
        }
        case '}':
            jump(';');
            textBegin = position;
            if (open.size() == 1)
                return;
            open.pop_back();
            break;
        default:
            break;
        }
    }
    closeFile();
}

// The "xml" reader: elements become groups, attributes become settings;
// text, comments and processing instructions are not kept. The file element
// enters the tree only when the whole file parsed.
void Config::loadXmlFile()
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return;

    QXmlStreamReader xml(&file);
    xml.setNamespaceProcessing(false);

    auto fileElement = std::make_unique<ConfigNode>(fileName);
    std::vector<ConfigNode*> open{fileElement.get()};
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement: {
            auto element = std::make_unique<ConfigNode>(xml.qualifiedName().toString());
            for (const QXmlStreamAttribute& attribute : xml.attributes())
                element->setAttribute(attribute.qualifiedName().toString(), attribute.value().toString());
            open.push_back(open.back()->appendChild(std::move(element)));
            break;
        }
        case QXmlStreamReader::EndElement:
            if (open.size() > 1)
                open.pop_back();
            break;
        default:
            break;
        }
    }
    if (xml.hasError())
        return;
    documentRoot->appendChild(std::move(fileElement));
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
    const QString found = lookupFields(node, key.split(QLatin1Char('.')));
    return found.isEmpty() ? emptyText() : found;
}

// Field n of the key must name the element n levels below the start; once
// the field after next is empty, the next field names an attribute. Groups
// of the same name are searched in file order and the first non-empty value
// wins, so an empty value counts as absent. Iterative, so the search depth
// does not depend on the call stack.
QString Config::lookupFields(const ConfigNode* start, const QStringList& fields) const
{
    auto field = [&fields](qsizetype i) { return i < fields.size() ? fields.at(i) : QString(); };

    struct Frame {
        const ConfigNode* element;
        qsizetype level;
        std::size_t nextChild;
    };
    std::vector<Frame> path;

    // Either answers from the element's attributes or leaves the element on
    // the path so that its children are searched.
    auto visit = [&](const ConfigNode* element, qsizetype level) -> QString {
        if (element->tagName() != field(level))
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

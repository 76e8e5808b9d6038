#include "config.h"

#include <QFile>
#include <QVarLengthArray>
#include <QXmlStreamReader>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace libconfig {

namespace {

// Callers tell a missing setting by its emptiness, but some also ask isNull(),
// so "not found" is always an empty string that is not null.
QString emptyText()
{
    return QStringLiteral("");
}

// What each byte is to the "cfg" reader. White space is the C blanks plus
// the ISO 8859-1 no-break space (not QString::trimmed(), which would also
// take 0x85); ':', '=' and '}' are the only bytes the reader acts on between
// texts. A table, because the reader asks once for every byte of the file.
enum CfgClass : unsigned char { Other, Space, Structural };

constexpr std::array<CfgClass, 256> cfgClasses = [] {
    std::array<CfgClass, 256> table{};
    for (unsigned char c : {' ', '\t', '\n', '\v', '\f', '\r'})
        table[c] = Space;
    table[0xA0] = Space;
    for (unsigned char c : {':', '=', '}'})
        table[c] = Structural;
    return table;
}();

bool isCfgSpace(char c)
{
    return cfgClasses[static_cast<unsigned char>(c)] == Space;
}

// Names and values were once held in a C string, so a NUL ends them; the
// rest is trimmed.
QByteArrayView cfgBytes(const char* begin, const char* end)
{
    if (const void* nul = std::memchr(begin, '\0', std::size_t(end - begin)))
        end = static_cast<const char*>(nul);
    while (begin < end && isCfgSpace(*begin))
        ++begin;
    while (end > begin && isCfgSpace(end[-1]))
        --end;
    return QByteArrayView(begin, end - begin);
}

// The text of trimmed bytes, read as ISO 8859-1. A value also loses its
// quotes, wherever they stand.
QString cfgText(QByteArrayView bytes, bool dropQuotes)
{
    if (bytes.isEmpty())
        return emptyText();
    // ISO 8859-1 is the first 256 code points: each byte is its own
    // character, so the text is copied straight into the string.
    QString text(bytes.size(), Qt::Uninitialized);
    char16_t* out = reinterpret_cast<char16_t*>(text.data());
    char16_t* const first = out;
    for (char c : bytes) {
        if (dropQuotes && c == '"')
            continue;
        *out++ = static_cast<unsigned char>(c);
    }
    if (out - first != text.size())
        text.resize(out - first);
    return text;
}

// Diagnostics go to standard output, each as one line, flushed at once so
// that they keep their place among anything else written there.
void printLine(std::initializer_list<QByteArrayView> pieces)
{
    for (QByteArrayView piece : pieces)
        std::fwrite(piece.data(), 1, std::size_t(piece.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

// The whole of an open file. Only a regular file has a size to go by; any
// other (a directory, a pipe, a device) reads as empty.
std::string readAll(int fd)
{
    std::string bytes;
    struct stat status;
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0)
        return bytes;
    bytes.resize(std::size_t(status.st_size));
    std::size_t got = 0;
    while (got < bytes.size()) {
        const ssize_t n = ::read(fd, bytes.data() + got, bytes.size() - got);
        if (n > 0)
            got += std::size_t(n);
        else if (n == 0 || errno != EINTR)
            break;
    }
    bytes.resize(got);
    return bytes;
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
    // A stream that cannot be opened reads as an empty file, whatever an
    // earlier file left in it.
    closeFile();
    const int fd = ::open(QFile::encodeName(name).constData(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        // One read of the whole file; the reader then works on memory.
        stream = {readAll(fd), 0};
        ::close(fd);
        return true;
    }
    const QByteArray shown = name.toLocal8Bit();
    printLine({"Error in the method FileReader::open( ", shown, " ): File Not Found"});
    return false;
}

void Config::closeFile()
{
    stream = {};
}

bool Config::jump(char c)
{
    const std::size_t found = stream.bytes.find(c, stream.position);
    if (found == std::string::npos) {
        stream.position = stream.bytes.size();
        return false;
    }
    stream.position = found + 1;
    return true;
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

    const auto name = [](const char* begin, const char* end) {
        return cfgText(cfgBytes(begin, end), false);
    };
    const auto value = [](const char* begin, const char* end) {
        return cfgText(cfgBytes(begin, end), true);
    };
    const char* const data = stream.bytes.data();
    const std::size_t size = stream.bytes.size();
    // The reader keeps its place in a local while it scans, and leaves it
    // in the stream when it stops.
    std::size_t at = stream.position;
    auto skipPast = [&](char c) {
        const void* found = std::memchr(data + at, c, size - at);
        at = found ? std::size_t(static_cast<const char*>(found) - data) + 1 : size;
    };
    std::size_t textBegin = at; // everything since the last structural character
    while (at < size) {
        while (at < size && cfgClasses[static_cast<unsigned char>(data[at])] != Structural)
            ++at;
        if (at == size)
            break;
        switch (data[at++]) {
        case ':': {
            const QString groupName = name(data + textBegin, data + at - 1);
            skipPast('{');
            attachInnermost();
            auto group = std::make_unique<ConfigNode>(groupName);
            ConfigNode* raw = group.get();
            open.push_back({std::move(group), raw});
            textBegin = at;
            break;
        }
        case '=': {
            const QString key = name(data + textBegin, data + at - 1);
            const void* semicolon = std::memchr(data + at, ';', size - at);
            const std::size_t end = semicolon ? std::size_t(static_cast<const char*>(semicolon) - data) : size;
            const QString text = value(data + at, data + end);
            at = end < size ? end + 1 : end;
            open.back().element->setAttribute(key, text);
            attachInnermost();
            textBegin = at;
            break;
        }
        case '}':
            skipPast(';');
            textBegin = at;
            if (open.size() == 1) {
                // Reading ends here; the rest of the file stays unread until closing.
                stream.position = at;
                return;
            }
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

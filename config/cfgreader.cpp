#include "cfgreader.h"

#include "emptytext.h"

#include <array>
#include <cstring>

namespace libconfig {

namespace {

// What each byte is to the reader. A table, because the reader asks once
// for every byte of the file. White space is the C blanks plus the
// ISO 8859-1 no-break space (not QString::trimmed(), which would also take
// 0x85).
enum ByteClass : unsigned char { Other, Space, Structural };

constexpr std::array<ByteClass, 256> byteClasses = [] {
    std::array<ByteClass, 256> table{};
    for (unsigned char c : {' ', '\t', '\n', '\v', '\f', '\r'})
        table[c] = Space;
    table[0xA0] = Space;
    for (unsigned char c : {':', '=', '}'})
        table[c] = Structural;
    return table;
}();

ByteClass classOf(char c)
{
    return byteClasses[static_cast<unsigned char>(c)];
}

QByteArrayView trimmedBeforeNul(QByteArrayView text)
{
    if (const void* nul = std::memchr(text.data(), '\0', std::size_t(text.size())))
        text = text.first(static_cast<const char*>(nul) - text.data());
    while (!text.isEmpty() && classOf(text.front()) == Space)
        text = text.sliced(1);
    while (!text.isEmpty() && classOf(text.back()) == Space)
        text.chop(1);
    return text;
}

// ISO 8859-1 is the first 256 code points: each byte is its own character.
QString latin1Text(QByteArrayView bytes, bool dropQuotes)
{
    if (bytes.isEmpty())
        return emptyText();
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

} // namespace

void CfgStream::open(QByteArray text)
{
    bytes = std::move(text);
    m_position = 0;
}

void CfgStream::close()
{
    bytes = QByteArray();
    m_position = 0;
}

bool CfgStream::atEnd() const
{
    return m_position >= bytes.size();
}

QByteArrayView CfgStream::readText(char& structural)
{
    const qsizetype begin = m_position;
    const qsizetype size = bytes.size();
    const char* data = bytes.constData();
    while (m_position < size && classOf(data[m_position]) != Structural)
        ++m_position;
    const QByteArrayView text(data + begin, m_position - begin);
    structural = m_position < size ? data[m_position++] : '\0';
    return text;
}

QByteArrayView CfgStream::readValue()
{
    const qsizetype begin = m_position;
    const qsizetype end = bytes.indexOf(';', m_position);
    m_position = end < 0 ? bytes.size() : end + 1;
    return QByteArrayView(bytes).sliced(begin, (end < 0 ? bytes.size() : end) - begin);
}

bool CfgStream::skipPast(char c)
{
    const qsizetype found = bytes.indexOf(c, m_position);
    m_position = found < 0 ? bytes.size() : found + 1;
    return found >= 0;
}

QString cfgName(QByteArrayView text)
{
    return latin1Text(trimmedBeforeNul(text), false);
}

QString cfgValue(QByteArrayView text)
{
    return latin1Text(trimmedBeforeNul(text), true);
}

CfgTreeBuilder::CfgTreeBuilder(ConfigNode& document, const QString& fileName)
    : document(document)
{
    auto fileElement = std::make_unique<ConfigNode>(fileName);
    ConfigNode* element = fileElement.get();
    open.push_back({std::move(fileElement), element});
}

void CfgTreeBuilder::attachInnermost()
{
    OpenGroup& group = open.back();
    if (!group.unattached)
        return;
    ConfigNode& parent = open.size() == 1 ? document : *open[open.size() - 2].element;
    parent.appendChild(std::move(group.unattached));
}

void CfgTreeBuilder::openGroup(const QString& name)
{
    // A nested group is a member of the group around it, even if it stays empty.
    attachInnermost();
    auto group = std::make_unique<ConfigNode>(name);
    ConfigNode* element = group.get();
    open.push_back({std::move(group), element});
}

void CfgTreeBuilder::setSetting(const QString& key, const QString& value)
{
    open.back().element->setAttribute(key, value);
    attachInnermost();
}

bool CfgTreeBuilder::closeGroup()
{
    if (open.size() == 1)
        return false;
    open.pop_back();
    return true;
}

} // namespace libconfig

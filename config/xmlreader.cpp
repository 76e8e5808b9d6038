#include "xmlreader.h"

#include "diagnostics.h"

#include <QIODevice>
#include <QStringDecoder>

#include <expat.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>

using namespace Qt::StringLiterals;

QStringView XmlAttributes::value(QLatin1StringView qualifiedName) const
{
    for (const XmlAttribute& attribute : *this) {
        if (attribute.qualifiedName() == qualifiedName)
            return attribute.value();
    }
    return u"";
}

QStringView XmlAttributes::value(QStringView qualifiedName) const
{
    for (const XmlAttribute& attribute : *this) {
        if (attribute.qualifiedName() == qualifiedName)
            return attribute.value();
    }
    return u"";
}

void XmlAttributes::append(const QString& qualifiedName, const QString& value)
{
    QString* name = nullptr;
    QString* text = nullptr;
    appendSlot(name, text);
    *name = qualifiedName;
    *text = value;
}

XmlAttribute& XmlAttributes::appendSlot(QString*& name, QString*& value)
{
    if (std::size_t(m_count) == m_items.size())
        m_items.emplace_back();
    XmlAttribute& slot = m_items[std::size_t(m_count++)];
    name = &slot.m_qualifiedName;
    value = &slot.m_value;
    return slot;
}

bool XmlContentHandler::startElement(const QString&, const QString&, const QString&,
                                     const XmlAttributes&)
{
    return true;
}

bool XmlContentHandler::endElement(const QString&, const QString&, const QString&)
{
    return true;
}

namespace {

constexpr qint64 chunkSize = 64 * 1024;

// Documents repeat a few element and attribute names thousands of times:
// each name's texts are made once and found again by their bytes.
class NameCache
{
public:
    struct Name
    {
        QByteArray utf8;
        QString qualified;
        QString local; // after the prefix, if there is one
    };

    const Name& find(const char* utf8)
    {
        const qsizetype length = qsizetype(std::strlen(utf8));
        for (const Name& name : names) {
            if (name.utf8.size() == length && std::memcmp(name.utf8.constData(), utf8, std::size_t(length)) == 0)
                return name;
        }
        Name& slot = names[next];
        next = (next + 1) % names.size();
        slot.utf8 = QByteArray(utf8, length);
        slot.qualified = QString::fromUtf8(slot.utf8);
        const qsizetype colon = slot.qualified.indexOf(u':');
        slot.local = colon < 0 ? slot.qualified : slot.qualified.sliced(colon + 1);
        return slot;
    }

private:
    std::array<Name, 16> names;
    std::size_t next = 0;
};

bool isControl(char16_t c)
{
    return c < 0x20 || c == 0x7f;
}

// Whether the first bytes of a document say which encoding it is in: a
// byte-order mark, the zero bytes of UTF-16, or an encoding declaration.
bool encodingIsStated(QByteArrayView head)
{
    if (head.startsWith("\xEF\xBB\xBF") || head.startsWith("\xFE\xFF") || head.startsWith("\xFF\xFE"))
        return true;
    if (head.size() >= 2 && (head[0] == '\0' || head[1] == '\0'))
        return true;
    if (!head.startsWith("<?xml"))
        return false;
    const qsizetype end = head.indexOf("?>");
    const QByteArrayView declaration = end < 0 ? head : head.first(end);
    return declaration.indexOf("encoding") >= 0;
}

// How many bytes at the end of `block` are the start of a UTF-8 sequence
// that the next block completes.
qsizetype incompleteTail(QByteArrayView block)
{
    for (qsizetype back = 1; back <= 3 && back <= block.size(); ++back) {
        const auto byte = static_cast<unsigned char>(block[block.size() - back]);
        if ((byte & 0xC0) == 0x80)
            continue; // a continuation byte: look further back for the lead
        const int length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        return length > back ? back : 0;
    }
    return 0;
}

// A point-of-sale program that writes Latin-1 without saying so is a common
// fault: a document that states no encoding and is not valid UTF-8 is read
// as ISO-8859-1. Only an input that can be read twice gets this look.
QByteArray encodingOfUnstated(QIODevice* input)
{
    if (input->isSequential() || encodingIsStated(input->peek(1024)))
        return {};
    const qint64 start = input->pos();
    QByteArray carry;
    bool valid = true;
    while (valid) {
        QByteArray block = input->read(1 << 20);
        if (block.isEmpty())
            break;
        if (!carry.isEmpty())
            block.prepend(carry);
        const qsizetype tail = incompleteTail(block);
        valid = QByteArrayView(block).chopped(tail).isValidUtf8();
        carry = block.right(tail);
    }
    input->seek(start);
    return valid && carry.isEmpty() ? QByteArray() : "ISO-8859-1"_ba;
}

} // namespace

struct XmlReader::Private
{
    explicit Private(XmlContentHandler& handler)
        : handler(handler)
    {
    }

    // Where the last event ended, so that markup still held back by the
    // parser can be measured, and on which line.
    void noteEvent()
    {
        lastEventEnd = XML_GetCurrentByteIndex(parser) + XML_GetCurrentByteCount(parser);
        lastEventLine = qint64(XML_GetCurrentLineNumber(parser));
    }

    void stop()
    {
        stopped = true;
        XML_StopParser(parser, XML_FALSE);
    }

    // The handler may throw (an allocation failure); the exception must not
    // cross the parser's C frames, so it is kept and thrown again after.
    template<typename Step>
    void guarded(Step step)
    {
        if (stopped)
            return;
        try {
            noteEvent();
            step();
        } catch (...) {
            exception = std::current_exception();
            stop();
        }
    }

    // Values are decoded into the slot's own text, whose storage stays
    // from one element to the next.
    void assign(QString& text, const char* utf8)
    {
        const qsizetype length = qsizetype(std::strlen(utf8));
        text.resize(length);
        char16_t* out = reinterpret_cast<char16_t*>(text.data());
        qsizetype i = 0;
        for (; i < length && static_cast<unsigned char>(utf8[i]) < 0x80; ++i)
            out[i] = blankControls && isControl(char16_t(utf8[i])) ? u' ' : char16_t(utf8[i]);
        if (i == length)
            return;
        // Expat hands over valid UTF-8 only, so the decoder's state stays clean.
        QChar* end = utf8Decoder.appendToBuffer(reinterpret_cast<QChar*>(out + i),
                                                QByteArrayView(utf8 + i, length - i));
        text.resize(end - text.constData());
        if (blankControls) {
            for (QChar& c : text) {
                if (isControl(c.unicode()))
                    c = u' ';
            }
        }
    }

    static void XMLCALL onStart(void* data, const XML_Char* name, const XML_Char** atts)
    {
        auto* d = static_cast<Private*>(data);
        d->guarded([d, name, atts] {
            d->attributes.clear();
            for (const XML_Char** at = atts; *at; at += 2) {
                QString* attributeName = nullptr;
                QString* value = nullptr;
                d->attributes.appendSlot(attributeName, value);
                *attributeName = d->attributeNames.find(at[0]).qualified;
                d->assign(*value, at[1]);
            }
            const NameCache::Name& element = d->elementNames.find(name);
            if (!d->handler.startElement(d->noNamespace, element.local, element.qualified, d->attributes))
                d->stop();
        });
    }

    static void XMLCALL onEnd(void* data, const XML_Char* name)
    {
        auto* d = static_cast<Private*>(data);
        d->guarded([d, name] {
            const NameCache::Name& element = d->elementNames.find(name);
            if (!d->handler.endElement(d->noNamespace, element.local, element.qualified))
                d->stop();
        });
    }

    // Text, comments and the rest are not passed on; they only move the
    // place up to which the input has been taken in.
    static void XMLCALL onText(void* data, const XML_Char* text, int length)
    {
        auto* d = static_cast<Private*>(data);
        d->noteEvent();
        d->lastEventLine += std::count(text, text + length, '\n');
    }

    static void XMLCALL onOther(void* data, const XML_Char*, int)
    {
        static_cast<Private*>(data)->noteEvent();
    }

    // Single-byte encodings that expat does not know itself are mapped byte
    // by byte through Qt's named decoders.
    static int XMLCALL onUnknownEncoding(void*, const XML_Char* name, XML_Encoding* info)
    {
        QStringDecoder decoder(name, QStringDecoder::Flag::Stateless);
        if (!decoder.isValid())
            return XML_STATUS_ERROR;
        for (int byte = 0; byte < 256; ++byte) {
            const char c = char(byte);
            const QString decoded = decoder.decode(QByteArrayView(&c, 1));
            const bool single = decoded.size() == 1 && decoded[0] != QChar::ReplacementCharacter;
            info->map[byte] = single ? decoded[0].unicode() : -1;
        }
        info->data = nullptr;
        info->convert = nullptr;
        info->release = nullptr;
        return XML_STATUS_OK;
    }

    XmlContentHandler& handler;
    QByteArray chosenEncoding;
    QByteArray usedEncoding;
    bool blankControls = false;

    XML_Parser parser = nullptr;
    XmlAttributes attributes;
    NameCache elementNames;
    NameCache attributeNames;
    QStringDecoder utf8Decoder{QStringDecoder::Utf8};
    const QString noNamespace;

    bool stopped = false;
    std::exception_ptr exception;
    qint64 lastEventEnd = 0;
    qint64 lastEventLine = 1;
    qint64 faultOffset = -1;
    qint64 faultLine = -1;
};

XmlReader::XmlReader(XmlContentHandler& handler)
    : d(std::make_unique<Private>(handler))
{
}

XmlReader::~XmlReader() = default;

void XmlReader::setUndeclaredEncoding(const QByteArray& name)
{
    d->chosenEncoding = name;
}

void XmlReader::setBlankControlCharacters(bool blank)
{
    d->blankControls = blank;
}

qint64 XmlReader::faultOffset() const
{
    return d->faultOffset;
}

qint64 XmlReader::faultLine() const
{
    return d->faultLine;
}

QByteArray XmlReader::undeclaredEncoding() const
{
    return d->usedEncoding;
}

bool XmlReader::parse(QIODevice* input)
{
    d->stopped = false;
    d->exception = nullptr;
    d->lastEventEnd = 0;
    d->lastEventLine = 1;
    d->faultOffset = -1;
    d->faultLine = -1;
    if (!d->handler.startDocument())
        return false;
    if (!input || !input->isReadable())
        return false;

    d->usedEncoding = d->chosenEncoding.isEmpty() ? encodingOfUnstated(input) : d->chosenEncoding;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(d->usedEncoding.isEmpty() ? nullptr : d->usedEncoding.constData()),
        &XML_ParserFree);
    if (!parser)
        return false;
    d->parser = parser.get();
    XML_SetUserData(d->parser, d.get());
    XML_SetElementHandler(d->parser, &Private::onStart, &Private::onEnd);
    XML_SetCharacterDataHandler(d->parser, &Private::onText);
    XML_SetDefaultHandlerExpand(d->parser, &Private::onOther);
    XML_SetUnknownEncodingHandler(d->parser, &Private::onUnknownEncoding, nullptr);

    qint64 taken = 0;
    for (;;) {
        void* buffer = XML_GetBuffer(d->parser, int(chunkSize));
        const qint64 got = buffer ? input->read(static_cast<char*>(buffer), chunkSize) : 0;
        const bool last = got <= 0;
        const XML_Status status = buffer ? XML_ParseBuffer(d->parser, int(qMax<qint64>(got, 0)), last)
                                         : XML_STATUS_ERROR;
        if (d->exception)
            std::rethrow_exception(d->exception);
        if (d->stopped)
            return false;
        if (status != XML_STATUS_OK) {
            d->faultOffset = XML_GetCurrentByteIndex(d->parser);
            d->faultLine = qint64(XML_GetCurrentLineNumber(d->parser));
            if (!buffer || XML_GetErrorCode(d->parser) == XML_ERROR_NO_MEMORY) {
                printDiagnostic({"XML input not read past line ", QByteArray::number(d->faultLine),
                                 ": out of memory"});
            }
            return false;
        }
        if (last)
            break;
        taken += got;
        // What the parser holds back is one unfinished piece of markup.
        if (taken - d->lastEventEnd > largestMarkup) {
            d->faultOffset = d->lastEventEnd;
            d->faultLine = d->lastEventLine;
            printDiagnostic({"XML input not read past line ", QByteArray::number(d->faultLine),
                             ": a start tag or other markup there is larger than the limit of ",
                             QByteArray::number(largestMarkup >> 20), " MiB"});
            return false;
        }
    }
    d->parser = nullptr;
    return d->handler.endDocument();
}

bool parseXml(QIODevice* input, XmlContentHandler& handler)
{
    return XmlReader(handler).parse(input);
}

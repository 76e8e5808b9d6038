#include "xmlreader.h"

#include "asciiblocks.h"

#include "diagnostics.h"

#include <QIODevice>
#include <QScopeGuard>
#include <QStringDecoder>

#include <expat.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <new>

using namespace Qt::StringLiterals;

XmlAttributes::XmlAttributes(const XmlAttributes& other)
{
    *this = other;
}

XmlAttributes& XmlAttributes::operator=(const XmlAttributes& other)
{
    if (this == &other)
        return *this;
    clear();
    blankControls = other.blankControls;
    for (const XmlAttribute& attribute : other)
        append(attribute.qualifiedName(), attribute.m_value);
    return *this;
}

const char* XmlAttributes::keep(QByteArrayView bytes)
{
    auto& copy = kept.emplace_back(new char[std::size_t(bytes.size()) + 1]);
    std::copy_n(bytes.data(), bytes.size(), copy.get());
    copy[std::size_t(bytes.size())] = '\0';
    return copy.get();
}

void XmlAttributes::append(QStringView qualifiedName, QStringView value)
{
    decodeValues();
    const QByteArray utf8 = value.toUtf8();
    const QByteArray name = qualifiedName.toUtf8();
    XmlAttribute& attribute = items.emplace_back();
    attribute.m_name = keep(name);
    attribute.m_nameSize = name.size();
    attribute.m_utf8 = QByteArrayView(keep(utf8), utf8.size());
    char16_t* begin = reserve(value.size());
    attribute.m_value = QStringView(begin, std::copy_n(value.utf16(), value.size(), begin));
    used += value.size();
    decoded = items.size();
}

char16_t* XmlAttributes::reserve(qsizetype count) const
{
    if (capacity - used >= count)
        return buffer.get() + used;
    const qsizetype grown = qMax(2 * capacity, used + count + 256);
    // Allocated like the toolkit's own texts, so that running out of memory
    // shows the same way: as std::bad_alloc, which the caller may handle.
    std::unique_ptr<char16_t[], Free> larger(
        static_cast<char16_t*>(std::malloc(std::size_t(grown) * sizeof(char16_t))));
    if (!larger)
        throw std::bad_alloc();
    std::copy_n(buffer.get(), used, larger.get());
    for (std::size_t i = 0; i < decoded; ++i) {
        XmlAttribute& attribute = items[i];
        const char16_t* value = larger.get() + (attribute.m_value.utf16() - buffer.get());
        attribute.m_value = QStringView(value, attribute.m_value.size());
    }
    buffer = std::move(larger);
    capacity = grown;
    return buffer.get() + used;
}

namespace {

bool isControl(char16_t c)
{
    return c < 0x20 || c == 0x7f;
}

} // namespace

void XmlAttributes::decodeRest() const
{
    char16_t* out = reserve(undecodedUnits);
    for (; decoded < items.size(); ++decoded) {
        XmlAttribute& attribute = items[decoded];
        const char* utf8 = attribute.m_utf8.data();
        const qsizetype length = attribute.m_utf8.size();
        // Most request text is ASCII, which is widened in blocks.
        const qsizetype ascii = AsciiBlocks::widen(utf8, length, out, blankControls);
        char16_t* end = out + ascii;
        if (ascii < length) {
            // The parser hands over valid UTF-8 only.
            end = reinterpret_cast<char16_t*>(QStringDecoder(QStringDecoder::Utf8).appendToBuffer(
                reinterpret_cast<QChar*>(end), QByteArrayView(utf8 + ascii, length - ascii)));
            if (blankControls)
                std::replace_if(out + ascii, end, isControl, u' ');
        }
        attribute.m_value = QStringView(out, end);
        out = end;
    }
    used = out - buffer.get();
    undecodedUnits = 0;
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
        // An end tag names the element just started, and items repeat: the
        // name found last is tried first.
        if (matches(*last, utf8))
            return *last;
        for (const Name& name : names) {
            if (matches(name, utf8)) {
                last = &name;
                return name;
            }
        }
        Name& slot = names[next];
        last = &slot;
        next = (next + 1) % names.size();
        slot.utf8 = QByteArray(utf8);
        slot.qualified = QString::fromUtf8(slot.utf8);
        const qsizetype colon = slot.qualified.indexOf(u':');
        slot.local = colon < 0 ? slot.qualified : slot.qualified.sliced(colon + 1);
        return slot;
    }

private:
    // Compared in the parser's bytes, without measuring them first; an
    // unused slot matches no name, as no name is empty.
    static bool matches(const Name& name, const char* utf8)
    {
        const qsizetype size = name.utf8.size();
        const char* known = name.utf8.constData();
        for (qsizetype i = 0; i < size; ++i) {
            if (utf8[i] != known[i])
                return false;
        }
        return size > 0 && utf8[size] == '\0';
    }

    std::array<Name, 16> names;
    const Name* last = &names[0];
    std::size_t next = 0;
};

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
    if (input->isSequential())
        return "UTF-8"_ba;
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
    return valid && carry.isEmpty() ? "UTF-8"_ba : "ISO-8859-1"_ba;
}

} // namespace

struct XmlReader::Private
{
    explicit Private(XmlContentHandler& handler)
        : handler(handler)
    {
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
            step();
        } catch (...) {
            exception = std::current_exception();
            stop();
        }
    }

    // The values stay the parser's bytes until the handler asks for them
    // as text.
    void readAttributes(const XML_Char** atts)
    {
        attributes.clear();
        for (const XML_Char** at = atts; *at; at += 2)
            attributes.add(at[0], qsizetype(std::strlen(at[0])), at[1], qsizetype(std::strlen(at[1])));
    }

    static void XMLCALL onStart(void* data, const XML_Char* name, const XML_Char** atts)
    {
        auto* d = static_cast<Private*>(data);
        d->guarded([d, name, atts] {
            d->readAttributes(atts);
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

    // The document type declaration's internal subset is read declaration
    // by declaration, so the reader's place moves on through it while
    // expat keeps all of it: it is measured as one piece of markup.
    static void XMLCALL onStartDoctype(void* data, const XML_Char*, const XML_Char*, const XML_Char*, int)
    {
        auto* d = static_cast<Private*>(data);
        d->doctypeOffset = XML_GetCurrentByteIndex(d->parser);
        d->doctypeLine = qint64(XML_GetCurrentLineNumber(d->parser));
    }

    static void XMLCALL onEndDoctype(void* data)
    {
        static_cast<Private*>(data)->doctypeOffset = -1;
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

    XML_Parser parser = nullptr;
    XmlAttributes attributes;
    NameCache elementNames;
    const QString noNamespace;

    bool stopped = false;
    std::exception_ptr exception;
    qint64 faultOffset = -1;
    qint64 faultLine = -1;
    qint64 faultColumn = -1;
    QByteArray faultReason;
    bool markupTooLarge = false;
    qint64 doctypeOffset = -1; // while inside the document type declaration
    qint64 doctypeLine = -1;
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
    d->attributes.blankControls = blank;
}

qint64 XmlReader::faultOffset() const
{
    return d->faultOffset;
}

qint64 XmlReader::faultLine() const
{
    return d->faultLine;
}

qint64 XmlReader::faultColumn() const
{
    return d->faultColumn;
}

QByteArray XmlReader::faultReason() const
{
    return d->faultReason;
}

bool XmlReader::markupTooLarge() const
{
    return d->markupTooLarge;
}

QByteArray XmlReader::undeclaredEncoding() const
{
    return d->usedEncoding;
}

// Asked only by handlers that point at the request, so the print run pays
// nothing for them.
qint64 XmlReader::currentByteOffset() const
{
    return d->parser ? qint64(XML_GetCurrentByteIndex(d->parser)) : -1;
}

qint64 XmlReader::currentLine() const
{
    return d->parser ? qint64(XML_GetCurrentLineNumber(d->parser)) : -1;
}

qint64 XmlReader::currentColumn() const
{
    return d->parser ? qint64(XML_GetCurrentColumnNumber(d->parser)) + 1 : -1;
}

bool XmlReader::parse(QIODevice* input)
{
    d->stopped = false;
    d->exception = nullptr;
    d->faultOffset = -1;
    d->faultLine = -1;
    d->faultColumn = -1;
    d->faultReason.clear();
    d->markupTooLarge = false;
    d->doctypeOffset = -1;
    if (!d->handler.startDocument())
        return false;
    if (!input || !input->isReadable())
        return false;

    if (encodingIsStated(input->peek(1024)))
        d->usedEncoding.clear();
    else
        d->usedEncoding = d->chosenEncoding.isEmpty() ? encodingOfUnstated(input) : d->chosenEncoding;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(d->usedEncoding.isEmpty() ? nullptr : d->usedEncoding.constData()),
        &XML_ParserFree);
    if (!parser)
        return false;
    d->parser = parser.get();
    // The parser is freed on the way out, whichever way that is.
    const auto forget = qScopeGuard([this] { d->parser = nullptr; });
    XML_SetUserData(d->parser, d.get());
    XML_SetElementHandler(d->parser, &Private::onStart,
                          d->handler.readsEndElements() ? &Private::onEnd : nullptr);
    XML_SetUnknownEncodingHandler(d->parser, &Private::onUnknownEncoding, nullptr);
    XML_SetDoctypeDeclHandler(d->parser, &Private::onStartDoctype, &Private::onEndDoctype);

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
            // Expat counts columns from 0.
            d->faultColumn = qint64(XML_GetCurrentColumnNumber(d->parser)) + 1;
            d->faultReason = XML_ErrorString(XML_GetErrorCode(d->parser));
            if (!buffer || XML_GetErrorCode(d->parser) == XML_ERROR_NO_MEMORY) {
                printDiagnostic({"XML input not read past line ", QByteArray::number(d->faultLine),
                                 ": out of memory"});
            }
            return false;
        }
        if (last)
            break;
        taken += got;
        // Between two reads the parser's place is the start of what it
        // holds back: one unfinished piece of markup (or, when the read
        // ended between two, the last one it finished).
        const bool inDoctype = d->doctypeOffset >= 0;
        const qint64 place = inDoctype ? d->doctypeOffset : XML_GetCurrentByteIndex(d->parser);
        if (place >= 0 && taken - place > largestMarkup) {
            d->faultOffset = place;
            d->faultLine = inDoctype ? d->doctypeLine : qint64(XML_GetCurrentLineNumber(d->parser));
            d->markupTooLarge = true;
            d->faultReason = "markup larger than the limit";
            printDiagnostic({"XML input not read past line ", QByteArray::number(d->faultLine),
                             ": a start tag or other markup there is larger than the limit of ",
                             QByteArray::number(largestMarkup >> 20), " MiB"});
            return false;
        }
    }
    return d->handler.endDocument();
}

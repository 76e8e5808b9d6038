#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QLatin1StringView>
#include <QString>
#include <QStringView>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

class QIODevice;

// Whether an element's or attribute's name is `word`. Names are short and
// compared for every element of a long document, so this is a plain loop,
// not a call.
inline bool isName(QStringView name, QLatin1StringView word)
{
    if (name.size() != word.size())
        return false;
    const char16_t* a = name.utf16();
    const char* b = word.data();
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (a[i] != static_cast<unsigned char>(b[i]))
            return false;
    }
    return true;
}

// Whether the `size` bytes at `a` and at `b` are the same. Names are
// compared for every element of a long document: short ones in a few
// overlapping word-sized loads rather than through a call.
inline bool sameBytes(const char* a, const char* b, qsizetype size)
{
    const auto differ = [a, b](qsizetype at, auto word) {
        decltype(word) x, y;
        std::memcpy(&x, a + at, sizeof x);
        std::memcpy(&y, b + at, sizeof y);
        return x != y;
    };
    if (size >= 8) {
        for (qsizetype i = 0; i + 8 <= size; i += 8) {
            if (differ(i, quint64()))
                return false;
        }
        return !differ(size - 8, quint64());
    }
    if (size >= 4)
        return !differ(0, quint32()) && !differ(size - 4, quint32());
    for (qsizetype i = 0; i < size; ++i) {
        if (a[i] != b[i])
            return false;
    }
    return true;
}

// One attribute of an element: its name as written (no namespace
// processing) and its value, as the parser read it (UTF-8) and decoded.
// Views into the list that holds it.
class XmlAttribute
{
public:
    // The name is kept in UTF-8 and decoded only by readers that show it.
    QString qualifiedName() const { return QString::fromUtf8(m_name, m_nameSize); }
    // Whether the name is `word` (ASCII).
    bool hasName(QLatin1StringView word) const
    {
        return m_nameSize == word.size() && sameBytes(m_name, word.data(), m_nameSize);
    }
    QStringView value() const { return m_value; }
    // The value as the request wrote it, before control characters are
    // blanked.
    QByteArrayView utf8Value() const { return m_utf8; }

private:
    friend class XmlAttributes;
    const char* m_name = "";
    qsizetype m_nameSize = 0;
    QByteArrayView m_utf8;
    QStringView m_value;
};

// The attributes of one element in document order. The values are decoded
// only when the first of them is asked for as text, all at once, one after
// the other into one buffer, which serves element after element: an element
// costs no allocation once the buffer has grown to the widest, and one
// whose values are only read as bytes costs no decoding. The names and the
// bytes are the parser's own, valid while the element is delivered; a copy
// of the list keeps bytes of its own.
class XmlAttributes
{
public:
    XmlAttributes() = default;
    XmlAttributes(const XmlAttributes& other);
    XmlAttributes& operator=(const XmlAttributes& other);

    qsizetype size() const { return qsizetype(items.size()); }
    bool isEmpty() const { return items.empty(); }
    const XmlAttribute& at(qsizetype i) const
    {
        decodeValues();
        return items[std::size_t(i)];
    }
    const XmlAttribute* begin() const
    {
        decodeValues();
        return items.data();
    }
    const XmlAttribute* end() const { return items.data() + items.size(); }

    // The value of the attribute of that name; an empty (not null) text when
    // the element has none.
    QStringView value(QLatin1StringView qualifiedName) const
    {
        if (const XmlAttribute* attribute = named(qualifiedName)) {
            decodeValues();
            return attribute->m_value;
        }
        return u"";
    }
    // The same value as the request wrote it; empty when there is none.
    QByteArrayView utf8Value(QLatin1StringView qualifiedName) const
    {
        const XmlAttribute* attribute = named(qualifiedName);
        return attribute ? attribute->m_utf8 : QByteArrayView();
    }

    void append(QStringView qualifiedName, QStringView value);
    // Done for every element a parser delivers, so it frees nothing: the
    // storage serves the next element.
    void clear()
    {
        used = 0;
        items.clear();
        decoded = 0;
        undecodedUnits = 0;
        if (!kept.empty())
            kept.clear();
    }

private:
    friend class XmlReader;

    const XmlAttribute* named(QLatin1StringView qualifiedName) const
    {
        for (const XmlAttribute& attribute : items) {
            if (attribute.hasName(qualifiedName))
                return &attribute;
        }
        return nullptr;
    }
    // Adds an attribute read by the parser, its value still undecoded.
    void add(const char* name, qsizetype nameSize, const char* utf8, qsizetype length)
    {
        XmlAttribute& attribute = items.emplace_back();
        attribute.m_name = name;
        attribute.m_nameSize = nameSize;
        attribute.m_utf8 = QByteArrayView(utf8, length);
        undecodedUnits += length;
    }
    void decodeValues() const
    {
        if (decoded < items.size())
            decodeRest();
    }
    void decodeRest() const;
    // Room for `count` more characters after the values already decoded.
    // Growing the buffer moves the views of those values.
    char16_t* reserve(qsizetype count) const;
    // Bytes and names kept by the list itself, for attributes not read from
    // a parser.
    const char* keep(QByteArrayView bytes);

    struct Free
    {
        void operator()(char16_t* memory) const { std::free(memory); }
    };
    mutable std::unique_ptr<char16_t[], Free> buffer;
    mutable qsizetype capacity = 0;
    mutable qsizetype used = 0;
    mutable std::vector<XmlAttribute> items;
    // The items before this one have their values decoded.
    mutable std::size_t decoded = 0;
    // Room the undecoded values take at most: a UTF-16 text has no more
    // units than its UTF-8 bytes.
    mutable qsizetype undecodedUnits = 0;
    bool blankControls = false;
    std::vector<std::unique_ptr<char[]>> kept;
};

// The events of a streamed XML document. Each callback answers whether
// reading should go on; false stops the parse at once.
class XmlContentHandler
{
public:
    virtual ~XmlContentHandler() = default;

    virtual bool startDocument() { return true; }
    virtual bool startElement(const QString& namespaceURI, const QString& localName,
                              const QString& qName, const XmlAttributes& atts);
    virtual bool endElement(const QString& namespaceURI, const QString& localName,
                            const QString& qName);
    virtual bool endDocument() { return true; }
    // A handler whose endElement does nothing says so here, and the reader
    // then leaves end tags to expat alone.
    virtual bool readsEndElements() const { return true; }
};

// Streams one XML document into a content handler, in one pass that keeps
// nothing of the document. Guarantees:
// - startDocument comes first, even for input that cannot be read;
// - every element whose start tag is complete before the first fault (a bad
//   byte, an illegal name, a mismatched or missing tag, the end of the input)
//   reaches the handler, and nothing after it;
// - endDocument follows only a complete, well-formed document;
// - names are passed on as written; external entities are never read, and
//   internal ones may expand a document at most a bounded number of times;
// - one piece of markup (a start tag, a comment, the document type
//   declaration with its internal subset) may take at most
//   largestMarkup bytes: a larger one is a fault, reported on standard
//   output with its line, so memory stays a small multiple of that.
// Encodings: what the document declares (UTF-8, UTF-16, ISO-8859-1 and
// US-ASCII natively, the single-byte encodings Qt knows by name otherwise).
// A document that declares nothing is UTF-8 unless it is not valid UTF-8,
// which is then read as ISO-8859-1; that is decided before the first element
// from a second look at the input, so only a seekable input gets it.
class XmlReader
{
public:
    static constexpr qint64 largestMarkup = 4 << 20;

    explicit XmlReader(XmlContentHandler& handler);
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    // The encoding of a document that states none; empty (the default):
    // decided from the bytes as described above.
    void setUndeclaredEncoding(const QByteArray& name);
    // Control characters (U+0000 to U+001F and U+007F) in attribute values
    // become blanks, for readers whose output is line-oriented.
    void setBlankControlCharacters(bool blank);

    // True when the document was read to its end and endDocument ran.
    // An exception thrown by the handler (std::bad_alloc) stops the parse
    // and leaves parse() with it.
    bool parse(QIODevice* input);

    // After a parse: where the first fault was (byte offset in the input,
    // and its line), or -1 when there was none; a stop asked for by the
    // handler is not a fault. And the encoding a document that stated none
    // was read in (empty when it stated one).
    qint64 faultOffset() const;
    qint64 faultLine() const;
    // The fault's column (from 1; -1 when not known) and what it is, in
    // expat's words ("mismatched tag", ...).
    qint64 faultColumn() const;
    QByteArray faultReason() const;
    // Whether that fault was a piece of markup over largestMarkup.
    bool markupTooLarge() const;
    QByteArray undeclaredEncoding() const;

    // Inside a handler's callback: where the markup being delivered starts
    // (a start tag's "<"), as a byte offset in the input, a line (from 1)
    // and a column (from 1, in characters). -1 outside a parse.
    qint64 currentByteOffset() const;
    qint64 currentLine() const;
    qint64 currentColumn() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

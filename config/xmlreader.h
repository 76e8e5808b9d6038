#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QLatin1StringView>
#include <QString>
#include <QStringView>

#include <cstdlib>
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

// Whether the UTF-8 name `utf8`, which ends at its NUL, is `word` (ASCII).
// Names are compared for every element of a long document in the bytes the
// parser hands over, without measuring or decoding them first.
inline bool isName(const char* utf8, QLatin1StringView word)
{
    const char* w = word.data();
    for (qsizetype i = 0; i < word.size(); ++i) {
        // A shorter name differs at its NUL, which no word holds.
        if (utf8[i] != w[i])
            return false;
    }
    return utf8[word.size()] == '\0';
}

// One attribute of an element: its name as written (no namespace
// processing) and its value. Views into the list that holds it.
class XmlAttribute
{
public:
    // The name in UTF-8; decoded only by readers that show it.
    const char* qualifiedNameUtf8() const { return m_name; }
    QString qualifiedName() const { return QString::fromUtf8(m_name); }
    bool hasName(QLatin1StringView word) const { return isName(m_name, word); }
    QStringView value() const { return m_value; }

private:
    friend class XmlAttributes;
    const char* m_name = "";
    QStringView m_value;
};

// The attributes of one element in document order. Their values stand one
// after the other in one buffer, which the reader refills for every element:
// an element costs no allocation once the buffer has grown to the widest.
// The names are the parser's own bytes, valid while the element is
// delivered; a copy of the list keeps names of its own.
class XmlAttributes
{
public:
    XmlAttributes() = default;
    XmlAttributes(const XmlAttributes& other);
    XmlAttributes& operator=(const XmlAttributes& other);

    qsizetype size() const { return qsizetype(items.size()); }
    bool isEmpty() const { return items.empty(); }
    const XmlAttribute& at(qsizetype i) const { return items[std::size_t(i)]; }
    const XmlAttribute* begin() const { return items.data(); }
    const XmlAttribute* end() const { return items.data() + items.size(); }

    // The value of the attribute of that name; an empty (not null) text when
    // the element has none.
    QStringView value(QLatin1StringView qualifiedName) const
    {
        for (const XmlAttribute& attribute : items) {
            if (attribute.hasName(qualifiedName))
                return attribute.m_value;
        }
        return u"";
    }

    void append(QStringView qualifiedName, QStringView value);
    void clear();

private:
    friend class XmlReader;
    // Room for `count` more characters after the values already held.
    // Growing the buffer moves the views of the values already added.
    char16_t* reserve(qsizetype count)
    {
        if (capacity - used < count)
            grow(count);
        return buffer.get() + used;
    }
    void grow(qsizetype count);
    // Adds the attribute named `name` whose value stands at [value, end) in
    // the reserved room.
    void add(const char* name, const char16_t* value, const char16_t* end)
    {
        XmlAttribute& attribute = items.emplace_back();
        attribute.m_name = name;
        attribute.m_value = QStringView(value, end);
        used = end - buffer.get();
    }
    // A name kept by the list itself, for attributes not read from a parser.
    const char* keepName(QByteArrayView utf8);

    struct Free
    {
        void operator()(char16_t* memory) const { std::free(memory); }
    };
    std::unique_ptr<char16_t[], Free> buffer;
    qsizetype capacity = 0;
    qsizetype used = 0;
    std::vector<XmlAttribute> items;
    std::vector<std::unique_ptr<char[]>> keptNames;
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

// The XML reader on its own: what reaches a handler, before and at a fault,
// in every encoding, and within which bounds.
#include "testsupport.h"
#include "xmlreader.h"

#include <QBuffer>
#include <QStringList>

#include <gtest/gtest.h>

#include <new>
#include <string>

using namespace Qt::StringLiterals;

namespace {

// Writes each event as one line: "<name a=v ...", ">name", and "end" for
// the end of the document. It can stop, or throw, at a chosen element.
class Recorder : public XmlContentHandler
{
public:
    QStringList events;
    QString stopAt;
    QString throwAt;

    bool startElement(const QString&, const QString&, const QString& qName, const XmlAttributes& atts) override
    {
        QString event = u'<' + qName;
        for (const XmlAttribute& attribute : atts)
            event += u' ' + attribute.qualifiedName() + u'=' + attribute.value().toString();
        events << event;
        if (qName == throwAt)
            throw std::bad_alloc();
        return qName != stopAt;
    }
    bool endElement(const QString&, const QString&, const QString& qName) override
    {
        events << u'>' + qName;
        return true;
    }
    bool endDocument() override
    {
        events << u"end"_s;
        return true;
    }
};

// A pipe: it can be read once only.
class Pipe : public QBuffer
{
public:
    bool isSequential() const override { return true; }
};

struct Parsed
{
    bool complete;
    QString events;
    qint64 faultOffset;
    std::string out;
};

Parsed parse(const QByteArray& bytes, Recorder&& recorder = {}, bool blank = false, bool pipe = false)
{
    Pipe pipeInput;
    QBuffer fileInput;
    QBuffer& input = pipe ? pipeInput : fileInput;
    input.setData(bytes);
    input.open(QIODevice::ReadOnly);
    XmlReader reader(recorder);
    reader.setBlankControlCharacters(blank);
    testing::internal::CaptureStdout();
    const bool complete = reader.parse(&input);
    const std::string out = testing::internal::GetCapturedStdout();
    return {complete, recorder.events.join(u'|'), reader.faultOffset(), out};
}

struct PrefixCase
{
    const char* name;
    QByteArray xml;
    const char* events;
};

// Every element whose start tag is complete before the first fault reaches
// the handler, and nothing after it, whatever the fault.
TEST(XmlParser, DeliversExactlyThePrefixBeforeAFault)
{
    // A document that states no encoding and is not UTF-8 would be read as
    // Latin-1, in which no byte is a fault.
    const QByteArray utf8 = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const PrefixCase cases[] = {
        {"bad byte", utf8 + "<r><a x=\"1\"/><b y=\"\xff\"/><c/></r>", "<r|<a x=1|>a"},
        {"control character in a name", "<r><a/><b \x01x=\"1\"/></r>", "<r|<a|>a"},
        {"tilde in a name", "<r><a/><b ~x=\"1\"/></r>", "<r|<a|>a"},
        {"at sign in a name", "<r><a/><b @x=\"1\"/></r>", "<r|<a|>a"},
        {"brace in a name", "<r><a/><b x}=\"1\"/></r>", "<r|<a|>a"},
        {"mismatched tag", "<r><a></b><c/></r>", "<r|<a"},
        {"cut inside a start tag", "<r><a/><b x=\"1", "<r|<a|>a"},
        {"cut after a start tag", "<r><a/><b x=\"1\">", "<r|<a|>a|<b x=1"},
        {"unknown encoding", "<?xml version=\"1.0\" encoding=\"no-such-code\"?><r/>", ""},
        {"nothing at all", "", ""},
        {"junk after the document", "<r/>junk<a/>", "<r|>r"},
    };
    for (const PrefixCase& c : cases) {
        const Parsed parsed = parse(c.xml);
        EXPECT_FALSE(parsed.complete) << c.name;
        EXPECT_EQ(parsed.events, QString::fromLatin1(c.events)) << c.name;
        EXPECT_EQ(parsed.out, "") << c.name;
    }
    EXPECT_EQ(parse(utf8 + "<r><a x=\"1\"/><b y=\"\xff\"/></r>").faultOffset, utf8.size() + 19);
}

struct EncodingCase
{
    const char* name;
    QByteArray xml;
    QString value;
    bool pipe = false;
};

TEST(XmlParser, ReadsDeclaredAndUndeclaredEncodings)
{
    const EncodingCase cases[] = {
        {"UTF-8", "<r v=\"caf\xc3\xa9 \xe2\x82\xac\"/>", u"café €"_s},
        {"windows-1252", "<?xml version=\"1.0\" encoding=\"windows-1252\"?><r v=\"\x80 \x93q\x94\"/>",
         u"€ “q”"_s},
        {"ISO-8859-15", "<?xml version='1.0' encoding='ISO-8859-15'?><r v='\xa4'/>", u"€"_s},
        {"ISO-8859-1", "<?xml version='1.0' encoding='ISO-8859-1'?><r v='\xa4'/>", u"¤"_s},
        {"UTF-16 with its mark", QByteArray("\xff\xfe<\0r\0 \0v\0=\0'\0\xe9\0'\0/\0>\0", 22), u"é"_s},
        {"undeclared Latin-1", "<r v=\"caf\xe8\"/>", u"cafè"_s},
        {"undeclared, a Latin-1 byte far in", "<r v=\"caf\xc3\xa9\">" + QByteArray(100000, ' ') + "\xe8</r>",
         u"cafÃ©"_s},
    };
    for (const EncodingCase& c : cases) {
        const Parsed parsed = parse(c.xml);
        EXPECT_TRUE(parsed.complete) << c.name;
        EXPECT_EQ(parsed.events.section(u'|', 0, 0), u"<r v="_s + c.value) << c.name;
    }
    // A pipe cannot be read twice to find out: it is UTF-8, and a Latin-1
    // byte is a fault.
    const Parsed piped = parse("<r><a/><b v=\"caf\xe8\"/></r>", {}, false, true);
    EXPECT_FALSE(piped.complete);
    EXPECT_EQ(piped.events, u"<r|<a|>a"_s);
}

// Request text must not end a printed line or make a command of its own.
TEST(XmlParser, BlanksControlCharactersInValuesWhenAsked)
{
    const QByteArray xml = "<r a=\"x&#10;J&#9;j&#13;&#127;\xc3\xa9&#10;\"/>";
    EXPECT_EQ(parse(xml, {}, true).events, u"<r a=x J j  é |>r|end"_s);
    EXPECT_EQ(parse(xml, {}, false).events, u"<r a=x\nJ\tj\r\u007fé\n|>r|end"_s);
}

TEST(XmlParser, EntitiesAreBounded)
{
    // Each level expands the one below ten times: a billion letters in all.
    QByteArray bomb = "<!DOCTYPE r [<!ENTITY e0 \"aaaaaaaaaa\">";
    for (int i = 1; i < 10; ++i)
        bomb += "<!ENTITY e" + QByteArray::number(i) + " \"" + QByteArray("&e").append(QByteArray::number(i - 1)).append(';').repeated(10) + "\">";
    bomb += "]><r v=\"&e9;\"/>";
    EXPECT_FALSE(parse(bomb).complete);

    // An external entity is never read.
    const Parsed external = parse("<!DOCTYPE r [<!ENTITY e SYSTEM \"/etc/passwd\">]><r>&e;<a/></r>");
    EXPECT_EQ(external.events.left(5), u"<r|<a"_s);
}

// Attributes cost the same each, however many an element has.
TEST(XmlParser, ManyAttributesOnOneElement)
{
    constexpr int count = 200000;
    QByteArray xml = "<r";
    for (int i = 0; i < count; ++i)
        xml += " a" + QByteArray::number(i) + "=\"" + QByteArray::number(i) + '"';
    xml += "/>";

    struct Counter : XmlContentHandler
    {
        XmlAttributes seen;
        bool startElement(const QString&, const QString&, const QString&, const XmlAttributes& atts) override
        {
            seen = atts;
            return true;
        }
    } counter;
    QBuffer input(&xml);
    input.open(QIODevice::ReadOnly);
    ASSERT_TRUE(XmlReader(counter).parse(&input));
    ASSERT_EQ(counter.seen.size(), count);
    EXPECT_EQ(counter.seen.at(count - 1).qualifiedName(), u"a199999");
    EXPECT_EQ(counter.seen.value("a123456"_L1), u"123456");
}

// A document type declaration on line 2 whose internal subset holds about
// `size` bytes of small entity declarations.
QByteArray withInternalSubset(qint64 size)
{
    QByteArray xml = "<?xml version=\"1.0\"?>\n<!DOCTYPE r [\n";
    const QByteArray value(1000, 'x');
    for (int i = 0; xml.size() < size; ++i)
        xml += "<!ENTITY e" + QByteArray::number(i) + " \"" + value + "\">\n";
    return xml + "]>\n<r/>";
}

struct LimitCase
{
    const char* name;
    QByteArray xml;
    const char* out; // empty: read to its end
};

TEST(XmlParser, MarkupLargerThanTheLimitIsAFault)
{
    // The parser's place is looked at between reads of 64 KiB.
    const qint64 over = XmlReader::largestMarkup + 256 * 1024;
    const qint64 under = XmlReader::largestMarkup - 256 * 1024;
    const LimitCase cases[] = {
        {"start tag", "<r>\n<a/>\n<b/>\n<c v=\"" + QByteArray(over, 'x') + "\"/></r>",
         "XML input not read past line 4: a start tag or other markup there is larger than the limit of 4 MiB\n"},
        {"start tag under the limit", "<r v=\"" + QByteArray(under, 'x') + "\"/>", ""},
        {"internal subset", withInternalSubset(over),
         "XML input not read past line 2: a start tag or other markup there is larger than the limit of 4 MiB\n"},
        {"internal subset under the limit", withInternalSubset(under), ""},
    };
    for (const LimitCase& c : cases) {
        const Parsed parsed = parse(c.xml);
        EXPECT_EQ(parsed.complete, *c.out == '\0') << c.name;
        EXPECT_EQ(parsed.out, c.out) << c.name;
    }
    // What came before the oversized tag was delivered.
    EXPECT_EQ(parse(cases[0].xml).events.left(20), u"<r|<a|>a|<b|>b"_s);
}

TEST(XmlParser, HandlerStopsOrThrows)
{
    Recorder stopping;
    stopping.stopAt = u"b"_s;
    const Parsed stopped = parse("<r><a/><b/><c/></r>", std::move(stopping));
    EXPECT_FALSE(stopped.complete);
    EXPECT_EQ(stopped.events, u"<r|<a|>a|<b"_s);
    EXPECT_EQ(stopped.faultOffset, -1);

    // An allocation failure inside the handler leaves the parse as itself.
    Recorder throwing;
    throwing.throwAt = u"b"_s;
    QByteArray xml = "<r><a/><b/><c/></r>";
    QBuffer input(&xml);
    input.open(QIODevice::ReadOnly);
    XmlReader reader(throwing);
    EXPECT_THROW(reader.parse(&input), std::bad_alloc);
    EXPECT_EQ(throwing.events.join(u'|'), u"<r|<a|>a|<b"_s);
}

} // namespace

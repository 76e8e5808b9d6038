// The request side of the preview: the request is rendered in memory by the
// print run's driver while a handler in front of it notes, for each element,
// what it printed and what is wrong with it.
#include "preview.h"
#include "printfile.h"

#include "diagnostics.h"
#include "documents.h"
#include "printerdriver.h"
#include "render.h"
#include "xmlreader.h"
#include "ztconfiguration.h"

#include <QBuffer>

#include <algorithm>
#include <new>
#include <optional>
#include <span>

using namespace Qt::StringLiterals;

namespace preview {

namespace {

// A place in the request: a byte offset, and its line and column from 1.
struct Place
{
    qint64 offset = -1;
    qint64 line = 0;
    qint64 column = 0;
};

// The place of attribute `name` in the start tag at `tag`: the request's
// bytes are read from the tag's "<" on. The tag's own place when the name
// cannot be found there (a request in UTF-16, say).
Place attributePlace(QByteArrayView request, const Place& tag, QByteArrayView name)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    qint64 i = tag.offset;
    if (i < 0 || i >= request.size() || request[i] != '<')
        return tag;
    while (i < request.size() && !isBlank(request[i]) && request[i] != '>' && request[i] != '/')
        ++i;
    for (;;) {
        while (i < request.size() && isBlank(request[i]))
            ++i;
        if (i >= request.size() || request[i] == '>' || request[i] == '/')
            return tag;
        const qint64 nameStart = i;
        while (i < request.size() && !isBlank(request[i]) && request[i] != '=')
            ++i;
        const QByteArrayView found = request.sliced(nameStart, i - nameStart);
        while (i < request.size() && (isBlank(request[i]) || request[i] == '='))
            ++i;
        if (i >= request.size())
            return tag;
        const qint64 valueEnd = request.indexOf(request[i], i + 1);
        if (found == name) {
            Place place{nameStart, tag.line, tag.column};
            for (qint64 k = tag.offset; k < nameStart; ++k) {
                if (request[k] == '\n') {
                    ++place.line;
                    place.column = 1;
                } else if ((static_cast<unsigned char>(request[k]) & 0xC0) != 0x80) {
                    ++place.column; // a character's first byte
                }
            }
            return place;
        }
        if (valueEnd < 0)
            return tag;
        i = valueEnd + 1;
    }
}

// How many single-character edits turn one name into the other.
qsizetype editDistance(QStringView a, QStringView b)
{
    std::vector<qsizetype> row(std::size_t(b.size()) + 1);
    for (qsizetype j = 0; j <= b.size(); ++j)
        row[std::size_t(j)] = j;
    for (qsizetype i = 1; i <= a.size(); ++i) {
        qsizetype diagonal = row[0];
        row[0] = i;
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const qsizetype above = row[std::size_t(j)];
            const qsizetype change = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[std::size_t(j)] = std::min({above + 1, row[std::size_t(j - 1)] + 1, change});
            diagonal = above;
        }
    }
    return row[std::size_t(b.size())];
}

// The known name that `name` most likely misspells: the same in other
// letter case, or one or two edits away from a name long enough for that.
QString likelyMeant(QStringView name, const std::vector<QLatin1StringView>& known)
{
    QString best;
    qsizetype bestDistance = 3;
    for (QLatin1StringView candidate : known) {
        if (name.compare(candidate, Qt::CaseInsensitive) == 0)
            return candidate.toString();
        const qsizetype distance = editDistance(name, QString(candidate));
        if (distance < bestDistance && distance * 3 <= candidate.size()) {
            bestDistance = distance;
            best = candidate.toString();
        }
    }
    return best;
}

QString quoted(QStringView text)
{
    return u'"' + text.toString() + u'"';
}

// Sits between the reader and the driver: hands every event on, and notes
// for each element where its printed lines start in the print file and
// what is wrong with it. Findings are placed on the lines once the print
// file is read.
class RequestChecker : public RenderWatcher
{
public:
    // A finding for the lines printed from `offset` up to `end`; a
    // replaced character is marked on the line that shows it. Without lines of its own it
    // goes on the next line printed.
    struct Finding
    {
        qint64 offset;
        qint64 end;
        Flag flag;
        std::optional<CodePage::Replacement> replacement;
        // On the last of its lines rather than the first.
        bool onLastLine = false;
    };

    RequestChecker(const QBuffer& printFile, const QByteArray& request, const DiagnosticCapture& diagnostics)
        : printFile(printFile), request(request), diagnostics(diagnostics)
    {
    }

    void watch(PrinterDriver& renderer, XmlReader& xmlReader) override
    {
        driver = &renderer;
        reader = &xmlReader;
        driver->logReplacements(&replacements);
    }

    // The render is over and its driver gone: the print file is complete.
    void detach() { driver = nullptr; }

    bool startDocument() override { return driver->startDocument(); }
    bool endDocument() override { return driver->endDocument(); }

    bool endElement(const QString& namespaceURI, const QString& localName, const QString& qName) override
    {
        --depth;
        return driver->endElement(namespaceURI, localName, qName);
    }

    bool startElement(const QString& namespaceURI, const QString& localName, const QString& qName,
                      const XmlAttributes& atts) override
    {
        ++depth;
        const qint64 before = written();
        const Place tag{reader->currentByteOffset(), reader->currentLine(), reader->currentColumn()};
        const std::size_t replacedBefore = replacements.size();
        const std::size_t misreadBefore = driver->misreadSettings().size();
        noteReports(before);

        const bool isMethod = isName(qName, Documents::methodElement);
        const std::size_t foundBefore = findings.size();
        if (isMethod && !checkMethod(tag, atts))
            return false;
        if (!isMethod)
            checkElement(tag, before, qName, atts);

        const bool goOn = driver->startElement(namespaceURI, localName, qName, atts);
        const qint64 after = written();
        // What is wrong with an element shows on the last line it printed:
        // an item's own line rather than the column titles before it.
        for (std::size_t i = foundBefore; i < findings.size(); ++i) {
            findings[i].end = after;
            findings[i].onLastLine = true;
        }
        if (isMethod) {
            // Fiscal documents stay command text whatever their dialect.
            const bool escPos = driver->documentSettings().dialect == Dialect::EscPos && !driver->isFiscal();
            setups.push_back({before, driver->method(), driver->documentSettings().paperWidth,
                              driver->codePageInForce().name(), driver->isFiscal(), escPos});
        }
        // The method element reads the document's settings; a few elements
        // read one of their own (the top margin, the fiscal description width).
        const auto& misread = driver->misreadSettings();
        for (std::size_t i = misreadBefore; i < misread.size(); ++i)
            noteSetting(before, misread[i]);
        for (std::size_t i = replacedBefore; i < replacements.size(); ++i)
            noteReplacement(before, after, replacements[i]);
        noteReports(before, tag);
        return goOn;
    }

    // What the print run reported since the last call, as findings at `here`.
    void noteReports(qint64 here, const Place& tag = {})
    {
        for (; reported < diagnostics.lines().size(); ++reported) {
            const QString text = QString::fromLocal8Bit(diagnostics.lines().at(reported));
            findings.push_back({here, here,
                                {Flag::Kind::Notice, "the print run reports: "_L1 + text, text, tag.line, tag.column},
                                {}});
        }
    }

    void noteFault(qint64 line)
    {
        faulty = true;
        noteReports(written());
        findings.push_back({written(), written(),
                            {Flag::Kind::Request,
                             "the request is not well-formed XML at line "_L1 + QString::number(line)
                                 + ": nothing after it is printed"_L1,
                             "request ends at its line "_L1 + QString::number(line), line, 0},
                            {}});
    }

    void noteEnd()
    {
        noteReports(written());
        if (sawMethod || faulty)
            return;
        findings.push_back({written(), written(),
                            {Flag::Kind::Request, u"the request has no method element: nothing is printed"_s,
                             u"no method element"_s},
                            {}});
    }

    const std::vector<Finding>& found() const { return findings; }
    const std::vector<SectionSetup>& sectionSetups() const { return setups; }

private:
    // Where the print file has got to, with the driver's buffered text in it.
    qint64 written()
    {
        if (driver)
            driver->flush();
        return printFile.size();
    }

    // False, and the parse stops, for a method the driver does not know:
    // it would stop there too, with "File Format Not Supported".
    bool checkMethod(const Place& tag, const XmlAttributes& atts)
    {
        const QStringView name = atts.value(Documents::methodAttribute);
        const qint64 here = written();
        sawMethod = true;
        document = Documents::find(name);
        if (!document) {
            QString what = "method "_L1 + quoted(name)
                           + " is no document method: the print run reports \"File Format Not Supported\""
                             " and prints nothing from here on"_L1;
            std::vector<QLatin1StringView> methods;
            for (const Documents::Document& known : Documents::all())
                methods.push_back(known.method);
            if (const QString meant = likelyMeant(name, methods); !meant.isEmpty())
                what += "; did you mean "_L1 + quoted(meant) + u'?';
            addRequestFinding(here, tag, what, "unknown method "_L1 + quoted(name));
            return false;
        }
        for (qsizetype i = 0; i < atts.size(); ++i) {
            const QString attribute = atts.at(i).qualifiedName();
            if (!isName(attribute, Documents::methodAttribute)) {
                addRequestFinding(here, attributePlace(request, tag, attribute.toUtf8()),
                                  "attribute "_L1 + quoted(attribute)
                                      + " of <method> is not read: only \"name\" is"_L1,
                                  quoted(attribute) + " not read"_L1);
            }
        }
        return true;
    }

    void checkElement(const Place& tag, qint64 here, const QString& qName, const XmlAttributes& atts)
    {
        if (!document) {
            // The document's own element encloses everything, the method too.
            if (depth > 1) {
                addRequestFinding(here, tag,
                                  "element <"_L1 + qName
                                      + "> comes before the method element: it is not read"_L1,
                                  u'<' + qName + "> before <method>"_L1);
            }
            return;
        }
        const Documents::Element* element = document->element(qName);
        const QString method = document->method;
        if (!element) {
            QString what = "element <"_L1 + qName + "> is not read by "_L1 + method;
            QString note = u'<' + qName + "> not read"_L1;
            if (const QString meant = likelyMeant(qName, elementNames()); !meant.isEmpty()) {
                what += "; did you mean <"_L1 + meant + ">?"_L1;
                note += ": <"_L1 + meant + ">?"_L1;
            }
            addRequestFinding(here, tag, what, note);
            return;
        }
        for (qsizetype i = 0; i < atts.size(); ++i) {
            const QString attribute = atts.at(i).qualifiedName();
            if (element->reads(i, attribute)) {
                checkQuotes(tag, here, qName, *element, i, atts.at(i));
                continue;
            }
            QString what = "attribute "_L1 + quoted(attribute) + " of <"_L1 + qName + "> is not read by "_L1 + method;
            QString note = quoted(attribute) + " not read"_L1;
            std::vector<QLatin1StringView> known;
            for (const Documents::Attribute& candidate : element->attributes)
                known.push_back(candidate.name);
            if (const QString meant = likelyMeant(attribute, known); !meant.isEmpty()) {
                what += "; did you mean "_L1 + quoted(meant) + u'?';
                note += ": "_L1 + quoted(meant) + u'?';
            }
            addRequestFinding(here, attributePlace(request, tag, attribute.toUtf8()), what, note);
        }
    }

    // The suite's printer takes a double quote inside printed text for the
    // end of the line: what follows it becomes a command.
    void checkQuotes(const Place& tag, qint64 here, const QString& qName, const Documents::Element& element,
                     qsizetype position, const XmlAttribute& attribute)
    {
        const DocumentSettings& settings = driver->documentSettings();
        if (settings.safeText || !attribute.value().contains(u'"')
            || !element.prints(position, attribute.qualifiedName(), settings))
            return;
        const QString name = attribute.qualifiedName();
        addRequestFinding(here, attributePlace(request, tag, name.toUtf8()),
                          "attribute "_L1 + quoted(name) + " of <"_L1 + qName
                              + "> holds a double quote, which ends the printer's line early; "
                                "safeText = \"true\" prints it as an apostrophe"_L1,
                          quoted(name) + ": \" ends the printer's line early"_L1);
    }

    std::vector<QLatin1StringView> elementNames() const
    {
        std::vector<QLatin1StringView> names;
        if (document->sharesSections) {
            for (const Documents::Element& section : Documents::sectionElements())
                names.push_back(section.name);
        }
        for (const Documents::Element& own : document->own)
            names.push_back(own.name);
        return names;
    }

    void addRequestFinding(qint64 here, const Place& place, const QString& what, const QString& note)
    {
        findings.push_back({here, here, {Flag::Kind::Request, what, note, place.line, place.column}, {}});
    }

    void noteSetting(qint64 here, const MisreadSetting& setting)
    {
        const QString what = "setting "_L1 + setting.key + " = "_L1 + quoted(setting.text)
                             + (setting.isSwitch ? " reads as false: a switch is on only for \"true\""_L1
                                                 : " reads as 0: it is not a whole number"_L1);
        const QString keyWord = setting.key.section(u'.', -1);
        const QString note = keyWord + u' ' + quoted(setting.text) + (setting.isSwitch ? " is false"_L1 : " is 0"_L1);
        findings.push_back({here, here, {Flag::Kind::Setting, what, note}, {}});
    }

    void noteReplacement(qint64 from, qint64 to, const CodePage::Replacement& replacement)
    {
        const QString character = QString::fromUcs4(&replacement.character, 1);
        const QString page = QString::fromLatin1(driver->codePageInForce().name());
        const QString what = quoted(character) + " is not in code page "_L1 + page + ": printed as "_L1
                             + quoted(replacement.printed);
        const QString note = character + " printed as "_L1 + replacement.printed;
        findings.push_back({from, to, {Flag::Kind::Unprintable, what, note}, replacement});
    }

    PrinterDriver* driver = nullptr;
    const QBuffer& printFile;
    const QByteArray& request;
    const DiagnosticCapture& diagnostics;
    const XmlReader* reader = nullptr;
    const Documents::Document* document = nullptr;
    int depth = 0;
    bool sawMethod = false;
    bool faulty = false;
    qsizetype reported = 0;
    std::vector<CodePage::Replacement> replacements;
    std::vector<Finding> findings;
    std::vector<SectionSetup> setups;
};

// The rows of a paper in the order of their places in the print file, to
// find the lines an element printed without going through all of them for
// every finding: a long request may have a finding on each of its items.
class RowIndex
{
public:
    explicit RowIndex(Paper& paper)
    {
        for (Section& section : paper.sections) {
            for (Row& row : section.rows)
                rows.push_back(&row);
        }
    }

    // The rows printed from `from` up to `to`.
    std::span<Row* const> printed(qint64 from, qint64 to) const
    {
        const auto first = firstAt(from);
        return {first, firstAt(to)};
    }

    // The first row printed at or after `offset`, else the last row.
    Row* next(qint64 offset) const
    {
        const auto found = firstAt(offset);
        if (found != rows.end())
            return *found;
        return rows.empty() ? nullptr : rows.back();
    }

private:
    std::vector<Row*>::const_iterator firstAt(qint64 offset) const
    {
        return std::lower_bound(rows.begin(), rows.end(), offset,
                                [](const Row* row, qint64 place) { return row->offset < place; });
    }

    std::vector<Row*> rows;
};

// Marks the replacement on the first of `rows` that shows the text it was
// made in, or as much of its start as the row kept (a description column
// cuts it).
Row* rowShowing(std::span<Row* const> rows, const CodePage::Replacement& replacement)
{
    for (Row* row : rows) {
        for (qsizetype kept = replacement.text.size(); kept > replacement.at; --kept) {
            const qsizetype start = row->text.indexOf(QStringView(replacement.text).first(kept));
            if (start < 0)
                continue;
            row->marks.push_back({start + replacement.at, qMin(replacement.printed.size(), kept - replacement.at)});
            return row;
        }
    }
    return nullptr;
}

void place(Paper& paper, const RowIndex& index, const RequestChecker::Finding& finding)
{
    const std::span<Row* const> printed = index.printed(finding.offset, finding.end);
    Row* row = nullptr;
    if (finding.replacement)
        row = rowShowing(printed, *finding.replacement);
    else if (finding.onLastLine && !printed.empty())
        row = printed.back();
    if (!row)
        row = index.next(finding.offset);
    if (row)
        row->flags.push_back(finding.flag);
    else
        paper.unplaced.push_back(finding.flag);
}

} // namespace

Paper previewRequest(const QByteArray& request, const QString& source, const PreviewSettings& settings)
{
    DiagnosticCapture diagnostics;
    QBuffer printFile;
    QBuffer input;
    input.setData(request);
    input.open(QIODevice::ReadOnly);
    RequestChecker checker(printFile, request, diagnostics);
    const RenderOutcome outcome = renderRequest(input, printFile, *settings.configuration, &checker);
    checker.detach();
    if (outcome.faultLine >= 0)
        checker.noteFault(outcome.faultLine);
    checker.noteEnd();

    std::vector<SectionSetup> setups = checker.sectionSetups();
    if (setups.empty() || setups.front().offset > 0)
        setups.insert(setups.begin(), SectionSetup{0, {}, defaultPaperWidth, CodePage::localeEncoding()});
    applyWidth(setups, settings);
    Paper paper = readPrintFile(printFile.data(), setups, source);
    const RowIndex index(paper);
    for (const RequestChecker::Finding& finding : checker.found())
        place(paper, index, finding);
    if (outcome.outOfMemory)
        paper.unplaced.push_back({Flag::Kind::Notice, u"out of memory: the request was read only in part"_s,
                                  u"out of memory"_s});
    return paper;
}

} // namespace preview

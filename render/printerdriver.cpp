#include "printerdriver.h"

#include "diagnostics.h"
#include "emptytext.h"
#include "documenttypes.h"
#include "ztconfiguration.h"

#include <QFile>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

PrinterDriver::PrinterDriver(QIODevice& device, const ZTConfiguration& configuration)
    : config(&configuration), currentMethod(emptyText()), file(&device)
{
    // Until a document names its printer's code page, text is written in
    // the locale's.
    codePages.push_back(std::make_unique<CodePage>());
    codePage = codePages.back().get();
    // The stream gathers the text in large pieces of its own: the device
    // needs no buffer, and without one a write at the end of a run that ran
    // out of memory has nothing to allocate.
    if (file->isOpen() || file->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        stream = std::make_unique<TextOutput>(file, *codePage);
    else // the suite's exact words, naming a function of the suite's, not of ours
        printDiagnostic({"PrintManager::printAbstractOrder(...): Unable To Open File"});
}

PrinterDriver::~PrinterDriver()
{
    flush();
}

void PrinterDriver::flush()
{
    if (stream)
        stream->flush();
}

bool PrinterDriver::startDocument()
{
    reset();
    return true;
}

bool PrinterDriver::endDocument()
{
    endSection();
    return true;
}

bool PrinterDriver::endElement(const QString&, const QString&, const QString&)
{
    return true;
}

bool PrinterDriver::oneTime()
{
    if (oneTimeDone)
        return false;
    oneTimeDone = true;
    return true;
}

bool PrinterDriver::printDuplicate()
{
    return duplicate;
}

// The diagnostic's exact text is the suite's interface, naming the suite's
// own function.
constexpr QByteArrayView unknownTypeReport("Error into PrinterDriver::documentPath:  ");

QString PrinterDriver::documentPath(const QString& type)
{
    return DocumentTypes::findOrReport(type, unknownTypeReport).prefix;
}

void PrinterDriver::loadValues(const QString& type)
{
    loadSettings(DocumentTypes::findOrReport(type, unknownTypeReport));
}

void PrinterDriver::loadSettings(const DocumentType& type)
{
    docPath = type.prefix;
    settings = readDocumentSettings(*config, type, &misread);
    chooseCodePage(settings.codePage);
}

void PrinterDriver::chooseCodePage(const QByteArray& name)
{
    CodePage* chosen = codePages.front().get(); // the locale's
    if (!name.isEmpty()) {
        const auto known = std::find_if(codePages.begin() + 1, codePages.end(),
                                        [&name](const auto& page) { return page->name() == name; });
        if (known != codePages.end()) {
            chosen = known->get();
        } else if (auto page = std::make_unique<CodePage>(name); page->isValid()) {
            page->logReplacements(replacementLog);
            chosen = codePages.emplace_back(std::move(page)).get();
        } else {
            printDiagnostic({"Unknown code page \"", name, "\" in ", docPath.toLatin1(), SettingKey::codePage,
                             ": the print file is written in ", chosen->name()});
        }
    }
    codePage = chosen;
    if (stream)
        stream->setCodePage(*codePage);
}

QString PrinterDriver::printable(QStringView text) const
{
    return codePage->printable(text);
}

QString PrinterDriver::printable(const QString& text) const
{
    return codePage->printable(text);
}

QString PrinterDriver::justified(QStringView text, int width, QChar fill, Qt::Alignment alignment) const
{
    const QString printed = printable(text);
    const qsizetype padding = qMax<qsizetype>(0, width - printedLength(printed));
    if (padding == 0)
        return printed;
    const QString pad(padding, fill);
    return alignment & Qt::AlignRight ? pad + printed : printed + pad;
}

void PrinterDriver::logReplacements(std::vector<CodePage::Replacement>* log)
{
    replacementLog = log;
    for (const auto& page : codePages)
        page->logReplacements(log);
}

QByteArray PrinterDriver::replacementSummary() const
{
    QByteArrayList counts;
    for (const auto& page : codePages) {
        if (page->replacements() > 0)
            counts << QByteArray::number(page->replacements()) + " in " + page->name();
    }
    if (counts.isEmpty())
        return {};
    return "Characters the printer lacks were printed as their closest text: " + counts.join(", ");
}

bool PrinterDriver::startElement(const QString&, const QString&, const QString& qName,
                                 const XmlAttributes& atts)
{
    if (!isName(qName, Documents::methodElement)) {
        // Elements before the method element, after an unknown one, or that
        // the document does not read are ignored.
        if (const Documents::Element* element = elementOf(qName))
            (this->*element->print)(atts);
        return true;
    }

    if (const Documents::Document* chosen = Documents::find(atts.value(Documents::methodAttribute))) {
        chooseDocument(*chosen);
        return true;
    }
    printDiagnostic({"File Format Not Supported"});
    rejectedMethod = atts.value(Documents::methodAttribute).toString();
    currentMethod = emptyText();
    currentDocument = nullptr;
    lastElement = nullptr;
    return false;
}

void PrinterDriver::chooseDocument(const Documents::Document& chosen)
{
    loadSettings(chosen.type);
    if (chosen.duplicate == Documents::DuplicateEffect::Set)
        duplicate = true;
    else if (chosen.duplicate == Documents::DuplicateEffect::Clear)
        duplicate = false;
    currentMethod = chosen.method;
    currentDocument = &chosen;
    lastElement = nullptr;
    startSection();
}

const Documents::Element* PrinterDriver::elementOf(const QString& name)
{
    if (!currentDocument)
        return nullptr;
    // The reader hands over the same text for a name it saw last: the text
    // kept here holds that text's storage, so the same storage means the
    // same name, without comparing it.
    if (lastElement && name.constData() == lastElementName.constData() && name.size() == lastElementName.size())
        return lastElement;
    const Documents::Element* element = currentDocument->element(name);
    if (element) {
        lastElement = element;
        lastElementName = name;
    }
    return element;
}

bool PrinterDriver::printSections(const QString& name, const XmlAttributes& atts)
{
    for (const Documents::Element& section : Documents::sectionElements()) {
        if (isName(name, section.name)) {
            (this->*section.print)(atts);
            return true;
        }
    }
    return false;
}

bool PrinterDriver::printEncodedLine(QByteArrayView)
{
    return false;
}

void PrinterDriver::printRowFiscal(const QString&, const XmlAttributes&) {}

void PrinterDriver::printRowFiscal(const QString&, const QString&, const QString&, const QString&) {}

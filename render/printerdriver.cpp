#include "printerdriver.h"

#include "diagnostics.h"
#include "emptytext.h"
#include "syncsingleton.h"
#include "ztconfiguration.h"

#include <QFile>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

// One document method a request may name in its "method" element.
struct DocumentMethod
{
    // What choosing the method does to the duplicate flag.
    enum class DuplicateEffect { Unchanged, Set, Clear };

    QLatin1StringView name;
    QLatin1StringView documentType;
    DuplicateEffect duplicate;
    // Printed by the fiscal printer: command lines instead of framed text.
    bool fiscal;
    void (PrinterDriver::*print)(const QString&, const XmlAttributes&);
};

namespace {

using DuplicateEffect = DocumentMethod::DuplicateEffect;

// The document methods, tried in this order.
const DocumentMethod methods[] = {
    {"printPartialOrder"_L1, "order"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printPartialOrder},
    {"printFullOrder"_L1, "prefiscal"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printFullOrder},
    {"printFullOrderReceipt"_L1, "receipt"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printFullOrderReceipt},
    {"printFullOrderInvoice"_L1, "invoice"_L1, DuplicateEffect::Set, false, &PrinterDriver::printFullOrderInvoice},
    {"printFullOrderDelivery"_L1, "delivery"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printFullOrderDelivery},
    {"printFullOrderFiscal"_L1, "fiscal"_L1, DuplicateEffect::Clear, true, &PrinterDriver::printFullOrderFiscal},
    {"printAbstractOrder"_L1, "order"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printAbstractOrder},
    {"printAbstractOrderReceipt"_L1, "receipt"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printAbstractOrderReceipt},
    {"printAbstractOrderInvoice"_L1, "invoice"_L1, DuplicateEffect::Set, false, &PrinterDriver::printAbstractOrderInvoice},
    {"printAbstractOrderFiscal"_L1, "fiscal"_L1, DuplicateEffect::Clear, true, &PrinterDriver::printAbstractOrderFiscal},
    {"printReport"_L1, "report"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printReport},
    {"printSold"_L1, "sold"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printSold},
    {"printStatementOfAccount"_L1, "report"_L1, DuplicateEffect::Unchanged, false, &PrinterDriver::printStatementOfAccount},
};

struct DocumentType
{
    QLatin1StringView type;
    QLatin1StringView prefix;
};

const DocumentType documentTypes[] = {
    {"order"_L1, "zentaro.doc."_L1},
    {"prefiscal"_L1, "zentaro.prefiscaldoc."_L1},
    {"fiscal"_L1, "zentaro.fiscaldoc."_L1},
    {"receipt"_L1, "zentaro.receiptdoc."_L1},
    {"invoice"_L1, "zentaro.invoicedoc."_L1},
    {"delivery"_L1, "zentaro.deliverydoc."_L1},
    {"report"_L1, "zentaro.reportdoc."_L1},
    {"sold"_L1, "zentaro.solddoc."_L1},
};

const ZTConfiguration* configurationOrUsers(const ZTConfiguration* given)
{
    return given ? given : SyncSingleton<ZTConfiguration>::instance();
}

} // namespace

PrinterDriver::PrinterDriver(const QString& fileName, bool append,
                             const ZTConfiguration* configuration)
    : config(configurationOrUsers(configuration)), currentMethod(emptyText()),
      file(std::make_unique<QFile>(fileName)), justify(u"left"_s)
{
    openStream(append ? QIODevice::WriteOnly | QIODevice::Append : QIODevice::WriteOnly);
}

PrinterDriver::PrinterDriver(std::unique_ptr<QIODevice> device,
                             const ZTConfiguration* configuration)
    : config(configurationOrUsers(configuration)), currentMethod(emptyText()),
      file(std::move(device)), justify(u"left"_s)
{
    openStream(QIODevice::WriteOnly);
}

PrinterDriver::~PrinterDriver()
{
    flush();
    stream.reset();
    if (file)
        file->close();
}

void PrinterDriver::openStream(QIODevice::OpenMode mode)
{
    // Until a document names its printer's code page, text is written in
    // the locale's.
    codePages.push_back(std::make_unique<CodePage>());
    codePage = codePages.back().get();
    if (!codePage->isValid()) {
        codePages.back() = std::make_unique<CodePage>("UTF-8"_ba);
        codePage = codePages.back().get();
    }
    if (file->isOpen() || file->open(mode)) {
        stream = std::make_unique<TextOutput>(file.get(), *codePage);
    } else {
        printDiagnostic({"PrintManager::printAbstractOrder(...): Unable To Open File"});
    }
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

QString PrinterDriver::documentPath(const QString& type)
{
    const QString lowered = type.toLower();
    for (const DocumentType& known : documentTypes) {
        if (lowered == known.type)
            return known.prefix;
    }
    // The name is shown as a C string: it ends at its first NUL.
    const QByteArray shown = lowered.toLocal8Bit();
    printDiagnostic({"Error into PrinterDriver::documentPath:  ",
                     QByteArrayView(shown.constData(), qsizetype(std::strlen(shown.constData())))});
    return u"zentaro.prefiscaldoc."_s;
}

namespace {

// A width far beyond any paper would only build lines the size of memory.
// Kept as the setting says within the bound, negative widths included.
int boundedWidth(int width)
{
    constexpr int widestLine = 4096;
    return std::clamp(width, -widestLine, widestLine);
}

} // namespace

int PrinterDriver::boundedSetting(QLatin1StringView keyWord)
{
    // Empty or malformed text reads as 0, as toInt reports it.
    const QString key = docPath + keyWord;
    const QString text = config->getStrValue(key);
    bool number = false;
    const int value = text.toInt(&number);
    if (!number && !text.isEmpty())
        noteMisread(key, text, false);
    return boundedWidth(value);
}

void PrinterDriver::noteMisread(const QString& key, const QString& text, bool isSwitch)
{
    // Settings are read again for every document of the type (and the
    // fiscal description width for every item): each key is noted once.
    for (const MisreadSetting& known : misread) {
        if (known.key == key)
            return;
    }
    misread.push_back({key, text, isSwitch});
}

void PrinterDriver::loadValues(const QString& type)
{
    docPath = documentPath(type);

    // All the keys share the document's prefix, so one buffer serves them
    // all: only the setting's name after the prefix changes.
    QString key;
    key.reserve(docPath.size() + 32);
    key.append(docPath);
    const auto text = [this, &key](const char* keyWord) {
        key.truncate(docPath.size());
        key.append(QLatin1StringView(keyWord));
        return config->getStrValue(key);
    };
    // Empty or malformed text reads as 0, as toInt reports it; a switch is
    // on only for "true". Text that reads so without being empty or "false"
    // is noted, for tools that point at it.
    const auto number = [this, &text, &key](const char* keyWord) {
        const QString value = text(keyWord);
        bool isNumber = false;
        const int read = value.toInt(&isNumber);
        if (!isNumber && !value.isEmpty())
            noteMisread(key, value, false);
        return read;
    };
    const auto flag = [this, &text, &key](const char* keyWord) {
        const QString value = text(keyWord);
        if (value == "true"_L1)
            return true;
        if (!value.isEmpty() && value != "false"_L1)
            noteMisread(key, value, true);
        return false;
    };

    settings.quantityFieldWidth = boundedWidth(number("quantityFieldWidth"));
    settings.priceFieldWidth = boundedWidth(number("priceFieldWidth"));
    settings.totalPriceFieldWidth = boundedWidth(number("totalPriceFieldWidth"));
    settings.paperWidth = boundedWidth(number("paperWidth"));
    settings.paperRows = number("paperRows");
    if (settings.paperWidth == 0)
        settings.paperWidth = int(getPaperWidth());

    // The style is read with the other settings but no document uses it.
    text("style");

    settings.printGeometry = flag("printGeometry");
    settings.printHeader = flag("printHeader");
    settings.printLogo = flag("printLogo");
    settings.printCompany = flag("printCompany");
    settings.printDeliveryAddress = flag("printDeliveryAddress");
    settings.printBillingAddress = flag("printBillingAddress");
    settings.printTelephone = flag("printTelephone");
    settings.printDate = flag("printDate");
    settings.printTime = flag("printTime");
    settings.printTable = flag("printTable");
    settings.printCustomer = flag("printCustomer");
    settings.printLicenseNumber = flag("printLicenseNumber");
    settings.printFiscalCode = flag("printFiscalCode");
    settings.printCredit = flag("printCredit");
    settings.printWaiter = flag("printWaiter");
    settings.printNote = flag("printNote");
    settings.openCashDrawer = flag("openCashDrawer");
    chooseCodePage();
}

void PrinterDriver::chooseCodePage()
{
    const QString key = docPath + "codePage"_L1;
    const QByteArray name = config->getStrValue(key).trimmed().toLatin1();
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
            printDiagnostic({"Unknown code page \"", name, "\" in ", key.toLatin1(),
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
    if (!isName(qName, "method"_L1)) {
        // Elements before the method element, or after an unknown one, are ignored.
        if (currentEntry)
            (this->*currentEntry->print)(qName, atts);
        return true;
    }

    const QStringView name = atts.value("name"_L1);
    for (const DocumentMethod& method : methods) {
        if (name != method.name)
            continue;
        loadValues(method.documentType);
        if (method.duplicate == DuplicateEffect::Set)
            duplicate = true;
        else if (method.duplicate == DuplicateEffect::Clear)
            duplicate = false;
        currentMethod = method.name;
        currentEntry = &method;
        startSection();
        return true;
    }

    printDiagnostic({"File Format Not Supported"});
    currentMethod = emptyText();
    currentEntry = nullptr;
    return false;
}

std::vector<QLatin1StringView> PrinterDriver::documentMethods()
{
    std::vector<QLatin1StringView> names;
    for (const DocumentMethod& method : methods)
        names.push_back(method.name);
    return names;
}

bool PrinterDriver::isFiscal() const
{
    return currentEntry && currentEntry->fiscal;
}

void PrinterDriver::printRowFiscal(const QString&, const XmlAttributes&) {}

void PrinterDriver::printRowFiscal(const QString&, const QString&, const QString&, const QString&) {}

void PrinterDriver::printAbstractOrder(const QString&, const XmlAttributes&) {}

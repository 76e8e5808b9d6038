#include "printerdriver.h"

#include "syncsingleton.h"
#include "ztconfiguration.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

enum class DuplicateEffect { Unchanged, Set, Clear };

struct MethodEntry
{
    QLatin1StringView name;
    QLatin1StringView documentType;
    DuplicateEffect duplicate;
    void (PrinterDriver::*print)(const QString&, const QXmlStreamAttributes&);
};

// The document methods a request may name, tried in this order.
const MethodEntry methods[] = {
    {QLatin1StringView("printPartialOrder"), QLatin1StringView("order"), DuplicateEffect::Unchanged, &PrinterDriver::printPartialOrder},
    {QLatin1StringView("printFullOrder"), QLatin1StringView("prefiscal"), DuplicateEffect::Unchanged, &PrinterDriver::printFullOrder},
    {QLatin1StringView("printFullOrderReceipt"), QLatin1StringView("receipt"), DuplicateEffect::Unchanged, &PrinterDriver::printFullOrderReceipt},
    {QLatin1StringView("printFullOrderInvoice"), QLatin1StringView("invoice"), DuplicateEffect::Set, &PrinterDriver::printFullOrderInvoice},
    {QLatin1StringView("printFullOrderDelivery"), QLatin1StringView("delivery"), DuplicateEffect::Unchanged, &PrinterDriver::printFullOrderDelivery},
    {QLatin1StringView("printFullOrderFiscal"), QLatin1StringView("fiscal"), DuplicateEffect::Clear, &PrinterDriver::printFullOrderFiscal},
    {QLatin1StringView("printAbstractOrder"), QLatin1StringView("order"), DuplicateEffect::Unchanged, &PrinterDriver::printAbstractOrder},
    {QLatin1StringView("printAbstractOrderReceipt"), QLatin1StringView("receipt"), DuplicateEffect::Unchanged, &PrinterDriver::printAbstractOrderReceipt},
    {QLatin1StringView("printAbstractOrderInvoice"), QLatin1StringView("invoice"), DuplicateEffect::Set, &PrinterDriver::printAbstractOrderInvoice},
    {QLatin1StringView("printAbstractOrderFiscal"), QLatin1StringView("fiscal"), DuplicateEffect::Clear, &PrinterDriver::printAbstractOrderFiscal},
    {QLatin1StringView("printReport"), QLatin1StringView("report"), DuplicateEffect::Unchanged, &PrinterDriver::printReport},
    {QLatin1StringView("printSold"), QLatin1StringView("sold"), DuplicateEffect::Unchanged, &PrinterDriver::printSold},
    {QLatin1StringView("printStatementOfAccount"), QLatin1StringView("report"), DuplicateEffect::Unchanged, &PrinterDriver::printStatementOfAccount},
};

struct DocumentType
{
    QLatin1StringView type;
    QLatin1StringView prefix;
};

const DocumentType documentTypes[] = {
    {QLatin1StringView("order"), QLatin1StringView("zentaro.doc.")},
    {QLatin1StringView("prefiscal"), QLatin1StringView("zentaro.prefiscaldoc.")},
    {QLatin1StringView("fiscal"), QLatin1StringView("zentaro.fiscaldoc.")},
    {QLatin1StringView("receipt"), QLatin1StringView("zentaro.receiptdoc.")},
    {QLatin1StringView("invoice"), QLatin1StringView("zentaro.invoicedoc.")},
    {QLatin1StringView("delivery"), QLatin1StringView("zentaro.deliverydoc.")},
    {QLatin1StringView("report"), QLatin1StringView("zentaro.reportdoc.")},
    {QLatin1StringView("sold"), QLatin1StringView("zentaro.solddoc.")},
};

// Diagnostics go to standard output, each as one line, flushed at once so
// that they keep their place among anything else written there.
void printLine(std::initializer_list<QByteArrayView> pieces)
{
    for (QByteArrayView piece : pieces)
        std::fwrite(piece.data(), 1, std::size_t(piece.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

ZTConfiguration* configurationInstance()
{
    return SyncSingleton<ZTConfiguration>::instance();
}

} // namespace

PrinterDriver::PrinterDriver(const QString& fileName, bool append)
    : config(configurationInstance()), currentMethod(QLatin1String("")),
      file(std::make_unique<QFile>(fileName)), justify(QStringLiteral("left"))
{
    openStream(append ? QIODevice::WriteOnly | QIODevice::Append : QIODevice::WriteOnly);
}

PrinterDriver::PrinterDriver(std::unique_ptr<QIODevice> device)
    : config(configurationInstance()), currentMethod(QLatin1String("")),
      file(std::move(device)), justify(QStringLiteral("left"))
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
    if (file->isOpen() || file->open(mode)) {
        stream = std::make_unique<TextOutput>(file.get());
    } else {
        printLine({"PrintManager::printAbstractOrder(...): Unable To Open File"});
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
    printLine({"Error into PrinterDriver::documentPath:  ",
               QByteArrayView(shown.constData(), qsizetype(std::strlen(shown.constData())))});
    return QStringLiteral("zentaro.prefiscaldoc.");
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

int PrinterDriver::boundedSetting(const QString& keyWord) const
{
    // Empty or malformed text reads as 0, as toInt reports it.
    return boundedWidth(config->getStrValue(docPath + keyWord).toInt());
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
    // Empty or malformed text reads as 0, as toInt reports it.
    const auto number = [&text](const char* keyWord) { return text(keyWord).toInt(); };
    const auto flag = [&text](const char* keyWord) { return text(keyWord) == QLatin1StringView("true"); };

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
}

bool PrinterDriver::startElement(const QString&, const QString&, const QString& qName,
                                 const QXmlStreamAttributes& atts)
{
    if (qName != QLatin1StringView("method")) {
        // Elements before the method element, or after an unknown one, are ignored.
        if (currentPrint)
            (this->*currentPrint)(qName, atts);
        return true;
    }

    const QString name = value(atts, QLatin1StringView("name"));
    for (const MethodEntry& method : methods) {
        if (name != method.name)
            continue;
        loadValues(method.documentType);
        if (method.duplicate == DuplicateEffect::Set)
            duplicate = true;
        else if (method.duplicate == DuplicateEffect::Clear)
            duplicate = false;
        currentMethod = name;
        currentPrint = method.print;
        startSection();
        return true;
    }

    printLine({"File Format Not Supported"});
    currentMethod = QLatin1String("");
    currentPrint = nullptr;
    return false;
}

QString PrinterDriver::value(const QXmlStreamAttributes& atts, QLatin1StringView name)
{
    for (const QXmlStreamAttribute& attribute : atts) {
        if (attribute.qualifiedName() == name)
            return attribute.value().toString();
    }
    return QLatin1String("");
}

void PrinterDriver::printRowFiscal(const QString&, const QXmlStreamAttributes&) {}

void PrinterDriver::printRowFiscal(const QString&, const QString&, const QString&, const QString&) {}

void PrinterDriver::printAbstractOrder(const QString&, const QXmlStreamAttributes&) {}

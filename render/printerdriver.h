#pragma once

#include "codepage.h"
#include "textoutput.h"
#include "xmlreader.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QString>

#include <memory>
#include <vector>

class ZTConfiguration;

// Settings of one document type, read from "<prefix><key word>" keys; each
// field bears the name of the key word that fills it.
struct DocumentSettings
{
    int quantityFieldWidth = 0;
    int priceFieldWidth = 0;
    int totalPriceFieldWidth = 0;
    int paperWidth = 0;
    int paperRows = 0;
    QString style;  // free text; read with the others, used by no document

    bool printGeometry = false;
    bool printHeader = false;
    bool printLogo = false;
    bool printCompany = false;
    bool printDeliveryAddress = false;
    bool printTelephone = false;
    bool printDate = false;
    bool printTime = false;
    bool printTable = false;
    bool printCustomer = false;
    bool printBillingAddress = false;
    bool printLicenseNumber = false;
    bool printFiscalCode = false;
    bool printCredit = false;
    bool printWaiter = false;
    bool printNote = false;
    bool openCashDrawer = false;
};

// The content handler behind every print run: it picks the document method
// named by the request's "method" element, loads that document type's
// settings and hands each later element to the method. Concrete devices
// supply the operations that write bytes.
class PrinterDriver : public XmlContentHandler
{
    Q_DECLARE_TR_FUNCTIONS(PrinterDriver)

public:
    // Settings come from `configuration`, which must outlive the driver;
    // without one, from the user's configuration (the process singleton).
    PrinterDriver(const QString& fileName, bool append, const ZTConfiguration* configuration = nullptr);
    // Writes to an already constructed device (a buffer in tests, memory for
    // a preview); the driver takes ownership and opens it for writing if it
    // is not open yet.
    explicit PrinterDriver(std::unique_ptr<QIODevice> device,
                           const ZTConfiguration* configuration = nullptr);
    ~PrinterDriver() override;

    PrinterDriver(const PrinterDriver&) = delete;
    PrinterDriver& operator=(const PrinterDriver&) = delete;

    bool startDocument() override;
    bool endDocument() override;
    bool startElement(const QString& namespaceURI, const QString& localName,
                      const QString& qName, const XmlAttributes& atts) override;
    bool endElement(const QString& namespaceURI, const QString& localName,
                    const QString& qName) override;

    // Device operations.
    virtual unsigned getPaperWidth() = 0;
    virtual void reset() {}
    virtual void setBold() = 0;
    virtual void setCharSize() = 0;
    virtual void setCharSize(int size) = 0;
    virtual void setCenterJustify() = 0;
    virtual void fullCut() = 0;
    virtual void generatePulse() = 0;
    virtual void printSeparatorLine();
    virtual void startSection() = 0;
    virtual void endSection() = 0;
    virtual void initPrinter() {}
    virtual void print(unsigned int indent, const QString& text) = 0;
    virtual void println(unsigned int indent, const QString& text) = 0;
    virtual void println(const QString& text) = 0;
    virtual void printRowFiscal(const QString& name, const XmlAttributes& atts);
    virtual void printRowFiscal(const QString& department, const QString& quantity,
                                const QString& description, const QString& price);

    // Document headers.
    virtual void printGeometry(const XmlAttributes& atts);
    virtual void printPrinterInfo();
    virtual void printHeaders(const XmlAttributes& atts);
    virtual void printLogo() = 0;
    virtual void printCompanyHeader(const XmlAttributes& atts);
    virtual void printReceiptHeader(const XmlAttributes& atts);
    virtual void printInvoiceHeader(const XmlAttributes& atts);
    virtual void printDeliveryHeader(const XmlAttributes& atts);
    virtual void printCustomerHeader(const XmlAttributes& atts);
    virtual void printOrderInfo(const XmlAttributes& atts);
    virtual bool printSections(const QString& name, const XmlAttributes& atts);
    // Keeps the printer's name and connection from the "printers" element.
    void storePrinter(const XmlAttributes& atts);
    virtual void printColumnsHeader(const QString& a1, const QString& a2,
                                    const QString& a3, const QString& a4);

    // Document methods: each prints what one element of the request adds.
    virtual void printPartialOrder(const QString& qName, const XmlAttributes& atts);
    virtual void printFullOrder(const QString& qName, const XmlAttributes& atts);
    virtual void printFullOrderReceipt(const QString& qName, const XmlAttributes& atts);
    virtual void printFullOrderInvoice(const QString& qName, const XmlAttributes& atts);
    virtual void printFullOrderDelivery(const QString& qName, const XmlAttributes& atts);
    virtual void printFullOrderFiscal(const QString& qName, const XmlAttributes& atts);
    virtual void printAbstractOrder(const QString& qName, const XmlAttributes& atts);
    virtual void printAbstractOrderReceipt(const QString& qName, const XmlAttributes& atts);
    virtual void printAbstractOrderInvoice(const QString& qName, const XmlAttributes& atts);
    virtual void printAbstractOrderFiscal(const QString& qName, const XmlAttributes& atts);
    virtual void printReport(const QString& qName, const XmlAttributes& atts);
    virtual void printSold(const QString& qName, const XmlAttributes& atts);
    virtual void printStatementOfAccount(const QString& qName, const XmlAttributes& atts);
    virtual bool printDuplicate();

    bool oneTime();
    QString documentPath(const QString& type);
    void loadValues(const QString& type);
    // Views, so that attribute values go into the line without a copy.
    QString descriptionRow(QStringView a1, QStringView a2, QStringView a3, QStringView a4,
                           QChar fill, QStringView layout) const;

    // Pushes buffered text to the device; the destructor does it too.
    void flush();

    const DocumentSettings& documentSettings() const { return settings; }
    const QString& method() const { return currentMethod; }
    // The names a request's "method" element may give, in the order tried.
    static std::vector<QLatin1StringView> documentMethods();
    // Whether the document in force is printed by the fiscal printer.
    bool isFiscal() const;

    // Text as the printer of the document in force prints it (see CodePage).
    QString printable(QStringView text) const;
    QString printable(const QString& text) const;
    const CodePage& codePageInForce() const { return *codePage; }
    // Text made printable and padded to `width` printed characters, with
    // `fill` after it (left-aligned) or before it (right-aligned); never cut.
    QString justified(QStringView text, int width, QChar fill, Qt::Alignment alignment) const;
    // One line for the end of the run when characters had to be replaced,
    // else empty.
    QByteArray replacementSummary() const;
    // Every character replaced from now on, in every code page the run
    // uses, is added to `log` (null: none is); it must outlive the driver.
    void logReplacements(std::vector<CodePage::Replacement>* log);

    // A setting whose text read as 0 or false although it was neither empty
    // nor "false": "yes" for a switch, "wide" for a width.
    struct MisreadSetting
    {
        QString key;
        QString text;
        bool isSwitch; // read as false; otherwise a number read as 0
    };
    // Each such key once, in the order read.
    const std::vector<MisreadSetting>& misreadSettings() const { return misread; }
protected:
    int boundedSetting(QLatin1StringView keyWord);
    void labelLine(const QString& label, QStringView text);
    void printItemColumnsHeader(bool withUnitPrice);
    void printPricedItem(const XmlAttributes& atts, QStringView layout);
    void printAbstractItem(const XmlAttributes& atts);
    void printTotalLine(const QString& label, QStringView amount);
    void printInvoiceTotals(const XmlAttributes& atts);

    const ZTConfiguration* config;
    QString currentMethod;
    std::unique_ptr<QIODevice> file;
    std::unique_ptr<TextOutput> stream;
    bool duplicate = false;
    bool oneTimeDone = false;
    QString justify;
    QString docPath;
    QString printerInfo;
    QString charsize;
    QString ipaddress;
    QString port;
    DocumentSettings settings;
    QString credit;

private:
    void openStream(QIODevice::OpenMode mode);
    void chooseCodePage();
    void noteMisread(const QString& key, const QString& text, bool isSwitch);

    // The code pages of the run: the locale's, and those the documents name,
    // each kept for its count of replaced characters.
    std::vector<std::unique_ptr<CodePage>> codePages;
    CodePage* codePage = nullptr;
    std::vector<CodePage::Replacement>* replacementLog = nullptr;
    std::vector<MisreadSetting> misread;

    // The storage of the last row built, reused by the next: the row a
    // caller prints is gone by then.
    mutable QString rowBuffer;

    // The entry of the method table chosen by the last accepted "method"
    // element; null before one and after an unknown one.
    const struct DocumentMethod* currentEntry = nullptr;
};

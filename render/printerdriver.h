#pragma once

#include "saxreader.h"
#include "textoutput.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QString>
#include <QXmlStreamAttributes>

#include <memory>

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
    PrinterDriver(const QString& fileName, bool append);
    // Writes to an already constructed device (a buffer in tests); the driver
    // takes ownership and opens it for writing if it is not open yet.
    explicit PrinterDriver(std::unique_ptr<QIODevice> device);
    ~PrinterDriver() override;

    PrinterDriver(const PrinterDriver&) = delete;
    PrinterDriver& operator=(const PrinterDriver&) = delete;

    bool startDocument() override;
    bool endDocument() override;
    bool startElement(const QString& namespaceURI, const QString& localName,
                      const QString& qName, const QXmlStreamAttributes& atts) override;
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
    virtual void printRowFiscal(const QString& name, const QXmlStreamAttributes& atts);
    virtual void printRowFiscal(const QString& department, const QString& quantity,
                                const QString& description, const QString& price);

    // Document headers.
    virtual void printGeometry(const QXmlStreamAttributes& atts);
    virtual void printPrinterInfo();
    virtual void printHeaders(const QXmlStreamAttributes& atts);
    virtual void printLogo() = 0;
    virtual void printCompanyHeader(const QXmlStreamAttributes& atts);
    virtual void printReceiptHeader(const QXmlStreamAttributes& atts);
    virtual void printInvoiceHeader(const QXmlStreamAttributes& atts);
    virtual void printDeliveryHeader(const QXmlStreamAttributes& atts);
    virtual void printCustomerHeader(const QXmlStreamAttributes& atts);
    virtual void printOrderInfo(const QXmlStreamAttributes& atts);
    virtual bool printSections(const QString& name, const QXmlStreamAttributes& atts);
    virtual void printColumnsHeader(const QString& a1, const QString& a2,
                                    const QString& a3, const QString& a4);

    // Document methods: each prints what one element of the request adds.
    virtual void printPartialOrder(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printFullOrder(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printFullOrderReceipt(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printFullOrderInvoice(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printFullOrderDelivery(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printFullOrderFiscal(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printAbstractOrder(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printAbstractOrderReceipt(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printAbstractOrderInvoice(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printAbstractOrderFiscal(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printReport(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printSold(const QString& qName, const QXmlStreamAttributes& atts);
    virtual void printStatementOfAccount(const QString& qName, const QXmlStreamAttributes& atts);
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

protected:
    static QString value(const QXmlStreamAttributes& atts, QLatin1StringView name);
    int boundedSetting(const QString& keyWord) const;
    void labelLine(const QString& label, const QString& text);
    void printItemColumnsHeader(bool withUnitPrice);
    void printPricedItem(const QXmlStreamAttributes& atts, QStringView layout);
    void printAbstractItem(const QXmlStreamAttributes& atts);
    void printTotalLine(const QString& label, QStringView amount);
    void printInvoiceTotals(const QXmlStreamAttributes& atts);

    ZTConfiguration* config;
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
    using DocumentMethod = void (PrinterDriver::*)(const QString&, const QXmlStreamAttributes&);

    void openStream(QIODevice::OpenMode mode);

    // The method chosen by the last accepted "method" element; null before one.
    DocumentMethod currentPrint = nullptr;
};

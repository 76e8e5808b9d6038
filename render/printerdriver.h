#pragma once

#include "codepage.h"
#include "documents.h"
#include "documentsettings.h"
#include "rowlayout.h"
#include "textoutput.h"
#include "xmlreader.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QString>

#include <array>
#include <memory>
#include <vector>

struct DocumentType;
class ZTConfiguration;

// The content handler behind every print run: the request's "method"
// element chooses a document of the table in documents.h, whose type's
// settings are loaded; each later element goes to the operation the table
// gives it. Concrete devices supply the operations that write bytes.
//
// The members and virtual operations keep the names of the suite's own
// driver, so that code written against it reads the same, including what
// nothing here reads or overrides: the state this renderer only stores (the
// printer's charsize, ipaddress and port, paperRows, the print file as
// `file`), the hooks reset() and initPrinter(), getPaperWidth(),
// printSections() and printDuplicate(), and the device's five-text
// printRowFiscal. The suite's document methods are the entries of the
// document table.
class PrinterDriver : public XmlContentHandler
{
    Q_DECLARE_TR_FUNCTIONS(PrinterDriver)

public:
    // Writes to `device`, opening it for writing if it is not open yet;
    // both must outlive the driver.
    PrinterDriver(QIODevice& device, const ZTConfiguration& configuration);
    ~PrinterDriver() override;

    PrinterDriver(const PrinterDriver&) = delete;
    PrinterDriver& operator=(const PrinterDriver&) = delete;

    bool startDocument() override;
    bool endDocument() override;
    bool startElement(const QString& namespaceURI, const QString& localName,
                      const QString& qName, const XmlAttributes& atts) override;
    bool endElement(const QString& namespaceURI, const QString& localName,
                    const QString& qName) override;
    bool readsEndElements() const override { return false; }

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
    // A line already in the print file's encoding (which writes ASCII as
    // itself), one that println would print as it stands, written as those
    // bytes where the device can; false leaves it to println.
    virtual bool printEncodedLine(QByteArrayView line);
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
    // Prints `name` if it is one of the header elements every list
    // document shares; answers whether it was.
    virtual bool printSections(const QString& name, const XmlAttributes& atts);
    virtual void printColumnsHeader(const QString& a1, const QString& a2,
                                    const QString& a3, const QString& a4);
    virtual bool printDuplicate();

    bool oneTime();
    // The settings prefix of a document type; an unknown type is reported
    // and gets the prefiscal one.
    QString documentPath(const QString& type);
    // Loads the settings of a document type.
    void loadValues(const QString& type);
    // Views, so that attribute values go into the line without a copy. The
    // layout by name gives an empty row for a name that is none.
    QString descriptionRow(QStringView a1, QStringView a2, QStringView a3, QStringView a4,
                           QChar fill, QStringView layout) const;
    QString descriptionRow(QStringView a1, QStringView a2, QStringView a3, QStringView a4,
                           QChar fill, RowLayout::Layout layout) const;

    // Pushes buffered text to the device.
    void flush();
    // Whether every byte so far reached the device, and if not, why.
    bool writeFailed() const { return stream && stream->failed(); }
    QString writeError() const { return stream ? stream->error() : QString(); }

    const DocumentSettings& documentSettings() const { return settings; }
    const QString& method() const { return currentMethod; }
    // The document chosen by the last accepted "method" element; null
    // before one and after an unknown one.
    const Documents::Document* document() const { return currentDocument; }
    // The name of a method element that named no document (and stopped the
    // render); empty when there was none.
    const QString& unknownMethod() const { return rejectedMethod; }
    // Whether the document in force is printed by the fiscal printer.
    bool isFiscal() const { return currentDocument && currentDocument->fiscal; }

    // Text as the printer of the document in force prints it (see CodePage).
    QString printable(QStringView text) const;
    QString printable(const QString& text) const;
    // Whether `text` prints as it stands: a row descriptionRow just built is
    // printable already and is not read again.
    bool printsAsItStands(const QString& text) const
    {
        return text.constData() == rowBuffer.constData() || !codePage->needsPreparing(text);
    }
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
    // Settings read as 0 or false from other text, each key once, in the
    // order read.
    const std::vector<MisreadSetting>& misreadSettings() const { return misread.all(); }

protected:
    friend class Documents::DocumentTable;

    enum class Justification { Left, Center };

    // What the elements of the documents print; the document table says
    // which element of which document each one prints.
    void storePrinter(const XmlAttributes& atts);
    void printHeaderLines(const XmlAttributes& atts);
    void printLogoElement(const XmlAttributes& atts);
    void printTicketItem(const XmlAttributes& atts);
    void printTicketOtherItem(const XmlAttributes& atts);
    void printTicketVariant(const XmlAttributes& atts);
    void printPreBillItem(const XmlAttributes& atts);
    void printPreBillVariant(const XmlAttributes& atts);
    void printPreBillTotal(const XmlAttributes& atts);
    void printReceiptItem(const XmlAttributes& atts);
    void printReceiptTotal(const XmlAttributes& atts);
    void printNotPaid(const XmlAttributes& atts);
    void printAbstractNotPaid(const XmlAttributes& atts);
    void printInvoiceItem(const XmlAttributes& atts);
    void printInvoiceTotals(const XmlAttributes& atts);
    void printAbstractItem(const XmlAttributes& atts);
    void printFiscalItem(const XmlAttributes& atts);
    void printAbstractFiscalItem(const XmlAttributes& atts);
    void printFiscalPayments(const XmlAttributes& atts);
    void printReportPeriod(const XmlAttributes& atts);
    void printPrefiscalSummary(const XmlAttributes& atts);
    void printReceiptsSummary(const XmlAttributes& atts);
    void printTaxRateRow(const XmlAttributes& atts);
    void printInvoicesSummary(const XmlAttributes& atts);
    void printCancelledSummary(const XmlAttributes& atts);
    void printSoldItem(const XmlAttributes& atts);
    void printStatementHeader(const XmlAttributes& atts);
    void printStatement(const XmlAttributes& atts);

    // Text from here on is made printable in and written in the code page
    // of that name (empty: the locale's); an unknown one is reported.
    void chooseCodePage(const QByteArray& name);

    void labelLine(const QString& label, QStringView text);
    void printItemColumnsHeader(bool withUnitPrice);
    void printPricedItem(const XmlAttributes& atts, RowLayout::Layout layout);
    // The row descriptionRow lays out of the attributes named in `columns`
    // (an empty name: an empty column), printed.
    void printRow(const XmlAttributes& atts, const std::array<QLatin1StringView, 4>& columns, QChar fill,
                  RowLayout::Layout layout);
    void printTotalLine(const QString& label, QStringView amount);

    const ZTConfiguration* config;
    QString currentMethod;
    QIODevice* file;
    std::unique_ptr<TextOutput> stream;
    bool duplicate = false;
    bool oneTimeDone = false;
    Justification justify = Justification::Left;
    QString docPath;
    QString printerInfo;
    QString charsize;
    QString ipaddress;
    QString port;
    DocumentSettings settings;
    QString credit;

private:
    void chooseDocument(const Documents::Document& document);
    void loadSettings(const DocumentType& type);
    // The element of the document in force named `name`, or null.
    const Documents::Element* elementOf(const QString& name);

    // The code pages of the run: the locale's, and those the documents name,
    // each kept for its count of replaced characters.
    std::vector<std::unique_ptr<CodePage>> codePages;
    CodePage* codePage = nullptr;
    std::vector<CodePage::Replacement>* replacementLog = nullptr;
    MisreadSettings misread;

    // The storage of the last row built, reused by the next: the row a
    // caller prints is gone by then.
    mutable QString rowBuffer;
    // The same for rows laid out in the print file's encoding.
    QByteArray encodedRow;

    const Documents::Document* currentDocument = nullptr;
    QString rejectedMethod;
    // The last element dispatched: a long document repeats one item
    // element, so it is tried before the table is searched.
    const Documents::Element* lastElement = nullptr;
    QString lastElementName;
};

// The end-of-period summary report.
#include "printerdriver.h"

using namespace Qt::StringLiterals;

namespace {

// Prints the report's recurring blocks through the driver's device
// operations. Labels are chosen per element, so they are marked for the
// catalogues where they are written and translated where they are printed.
class ReportWriter
{
public:
    ReportWriter(PrinterDriver& driver, int paperWidth)
        // Values start at column W - 15; a narrower paper is taken as 15 wide.
        : driver(driver), valueColumn(qMax(paperWidth, 15) - 15)
    {
    }

    void labelLine(const char* label, QStringView text)
    {
        driver.print(0, dots(label));
        driver.println(text.toString());
    }

    void titleBlock(const char* title)
    {
        driver.setBold();
        driver.setCenterJustify();
        driver.println(QString());
        driver.println(PrinterDriver::tr(title));
        driver.setCharSize();
        driver.println(QString());
    }

    void serialRange(const XmlAttributes& atts)
    {
        driver.print(0, dots(QT_TRANSLATE_NOOP("PrinterDriver", "Serials")));
        driver.print(0, atts.value("firstserial"_L1).toString());
        driver.print(0, u" - "_s);
        driver.println(atts.value("lastserial"_L1).toString());
    }

private:
    QString dots(const char* label) const
    {
        return driver.justified(PrinterDriver::tr(label), valueColumn, u'.', Qt::AlignLeft);
    }

    PrinterDriver& driver;
    int valueColumn;
};

// The columns of the tax-rate table, right-aligned.
QString taxColumn(const PrinterDriver& driver, QStringView text, int width = 10)
{
    return driver.justified(text, width, u' ', Qt::AlignRight);
}

// The columns of the cancelled documents, left-aligned.
QString cancelledColumn(const PrinterDriver& driver, QStringView text, int width)
{
    return driver.justified(text, width, u' ', Qt::AlignLeft);
}

} // namespace

void PrinterDriver::printReportPeriod(const XmlAttributes& atts)
{
    setBold();
    setCenterJustify();
    println(QString());
    println(tr("SUMMARIES"));
    // Unlike the other titles, the blank line here is still centred.
    println(QString());
    setCharSize();
    print(0, tr("BeginDate: "));
    println(atts.value("begindate"_L1).toString());
    print(0, tr("EndDate: "));
    println(atts.value("enddate"_L1).toString());
}

void PrinterDriver::printPrefiscalSummary(const XmlAttributes& atts)
{
    ReportWriter report(*this, settings.paperWidth);
    report.titleBlock(QT_TR_NOOP("PREFISCAL SUMMARY"));
    report.labelLine(QT_TR_NOOP("Number"), atts.value("number"_L1));
    report.labelLine(QT_TR_NOOP("TOTAL"), atts.value("total"_L1));
}

void PrinterDriver::printReceiptsSummary(const XmlAttributes& atts)
{
    ReportWriter report(*this, settings.paperWidth);
    report.titleBlock(QT_TR_NOOP("RECEIPTS SUMMARY"));
    report.labelLine(QT_TR_NOOP("Number"), atts.value("number"_L1));
    report.serialRange(atts);
    println(tr("Amount not paid: ") + atts.value("notPaid"_L1).toString());
    println(tr("Cash: ") + atts.value("cash"_L1).toString());
    println(tr("Credit Card: ") + atts.value("creditCard"_L1).toString());
    println(tr("Bancomat: ") + atts.value("bancomat"_L1).toString());
    println(tr("Other: ") + atts.value("other"_L1).toString());
    report.labelLine(QT_TR_NOOP("TOTAL"), atts.value("total"_L1));
    println(QString());
    printSeparatorLine();
    println(taxColumn(*this, tr("TAXRATE"), 6) + u' ' + taxColumn(*this, tr("TAXABLE")) + u' '
            + taxColumn(*this, tr("TAX")) + u' ' + taxColumn(*this, tr("AMOUNT")));
}

void PrinterDriver::printTaxRateRow(const XmlAttributes& atts)
{
    // The row differs from its heading on purpose: "% " after the rate
    // and one trailing blank.
    println(taxColumn(*this, atts.value("taxrate"_L1), 6) + "% "_L1 + taxColumn(*this, atts.value("taxable"_L1))
            + u' ' + taxColumn(*this, atts.value("tax"_L1)) + u' ' + taxColumn(*this, atts.value("amount"_L1))
            + u' ');
}

void PrinterDriver::printInvoicesSummary(const XmlAttributes& atts)
{
    ReportWriter report(*this, settings.paperWidth);
    printSeparatorLine();
    println(QString());
    report.titleBlock(QT_TR_NOOP("INVOICES SUMMARY"));
    report.labelLine(QT_TR_NOOP("Number"), atts.value("number"_L1));
    report.serialRange(atts);
    report.labelLine(QT_TR_NOOP("Taxable"), atts.value("taxable"_L1));
    report.labelLine(QT_TR_NOOP("Tax"), atts.value("tax"_L1));
    report.labelLine(QT_TR_NOOP("TOTAL"), atts.value("total"_L1));
}

void PrinterDriver::printCancelledSummary(const XmlAttributes& atts)
{
    ReportWriter report(*this, settings.paperWidth);
    report.titleBlock(QT_TR_NOOP("CANCELLED DOC SUMMARY"));
    report.labelLine(QT_TR_NOOP("Number"), atts.value("number"_L1));
    report.labelLine(QT_TR_NOOP("TOTAL"), atts.value("totals"_L1));
    setBold();
    println(QString());
    print(0, cancelledColumn(*this, tr("SERIAL"), 10));
    print(0, cancelledColumn(*this, tr("TOTAL"), 11));
    println(cancelledColumn(*this, tr("TAXRATE"), 10));
    // The cancelled documents follow "number" and "totals" as groups of
    // three attributes (serial, total, tax rate), read by position.
    const auto at = [&atts](qsizetype i) { return i < atts.size() ? atts.at(i).value() : QStringView(); };
    for (qsizetype i = 2; i < atts.size(); i += 3) {
        print(0, cancelledColumn(*this, at(i), 10));
        print(0, cancelledColumn(*this, at(i + 1), 11));
        println(cancelledColumn(*this, at(i + 2), 10));
    }
}

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

} // namespace

void PrinterDriver::printReport(const QString& qName, const XmlAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    ReportWriter report(*this, settings.paperWidth);
    // The columns of the tax-rate table, and of the cancelled documents.
    const auto taxColumn = [this](QStringView text, int width = 10) {
        return justified(text, width, u' ', Qt::AlignRight);
    };
    const auto cancelledColumn = [this](QStringView text, int width) {
        return justified(text, width, u' ', Qt::AlignLeft);
    };
    const auto value = [&atts](const char* name) { return atts.value(QLatin1StringView(name)); };
    if (isName(qName, "date"_L1)) {
        setBold();
        setCenterJustify();
        println(QString());
        println(tr("SUMMARIES"));
        // Unlike the other titles, the blank line here is still centred.
        println(QString());
        setCharSize();
        print(0, tr("BeginDate: "));
        println(value("begindate").toString());
        print(0, tr("EndDate: "));
        println(value("enddate").toString());
    } else if (isName(qName, "prefiscalssummary"_L1)) {
        report.titleBlock(QT_TR_NOOP("PREFISCAL SUMMARY"));
        report.labelLine(QT_TR_NOOP("Number"), value("number"));
        report.labelLine(QT_TR_NOOP("TOTAL"), value("total"));
    } else if (isName(qName, "receiptssummary"_L1)) {
        report.titleBlock(QT_TR_NOOP("RECEIPTS SUMMARY"));
        report.labelLine(QT_TR_NOOP("Number"), value("number"));
        report.serialRange(atts);
        println(tr("Amount not paid: ") + value("notPaid").toString());
        println(tr("Cash: ") + value("cash").toString());
        println(tr("Credit Card: ") + value("creditCard").toString());
        println(tr("Bancomat: ") + value("bancomat").toString());
        println(tr("Other: ") + value("other").toString());
        report.labelLine(QT_TR_NOOP("TOTAL"), value("total"));
        println(QString());
        printSeparatorLine();
        println(taxColumn(tr("TAXRATE"), 6) + u' ' + taxColumn(tr("TAXABLE")) + u' '
                + taxColumn(tr("TAX")) + u' ' + taxColumn(tr("AMOUNT")));
    } else if (isName(qName, "taxrate_item"_L1)) {
        // The row differs from its heading on purpose: "% " after the rate
        // and one trailing blank.
        println(taxColumn(value("taxrate"), 6) + "% "_L1
                + taxColumn(value("taxable")) + u' ' + taxColumn(value("tax")) + u' '
                + taxColumn(value("amount")) + u' ');
    } else if (isName(qName, "invoicessummary"_L1)) {
        printSeparatorLine();
        println(QString());
        report.titleBlock(QT_TR_NOOP("INVOICES SUMMARY"));
        report.labelLine(QT_TR_NOOP("Number"), value("number"));
        report.serialRange(atts);
        report.labelLine(QT_TR_NOOP("Taxable"), value("taxable"));
        report.labelLine(QT_TR_NOOP("Tax"), value("tax"));
        report.labelLine(QT_TR_NOOP("TOTAL"), value("total"));
    } else if (isName(qName, "cancelledsummary"_L1)) {
        report.titleBlock(QT_TR_NOOP("CANCELLED DOC SUMMARY"));
        report.labelLine(QT_TR_NOOP("Number"), value("number"));
        report.labelLine(QT_TR_NOOP("TOTAL"), value("totals"));
        setBold();
        println(QString());
        print(0, cancelledColumn(tr("SERIAL"), 10));
        print(0, cancelledColumn(tr("TOTAL"), 11));
        println(cancelledColumn(tr("TAXRATE"), 10));
        // The cancelled documents follow "number" and "totals" as groups of
        // three attributes (serial, total, tax rate), read by position.
        const auto at = [&atts](qsizetype i) {
            return i < atts.size() ? atts.at(i).value() : QStringView();
        };
        for (qsizetype i = 2; i < atts.size(); i += 3) {
            print(0, cancelledColumn(at(i), 10));
            print(0, cancelledColumn(at(i + 1), 11));
            println(cancelledColumn(at(i + 2), 10));
        }
    }
}

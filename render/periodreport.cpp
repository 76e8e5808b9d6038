// The end-of-period summary report.
#include "printerdriver.h"

namespace {

QString padRight(const QString& text, int width, QChar fill = QLatin1Char(' '))
{
    return text.size() < width ? text + QString(width - text.size(), fill) : text;
}

QString padLeft(const QString& text, int width)
{
    return text.size() < width ? QString(width - text.size(), QLatin1Char(' ')) + text : text;
}

} // namespace

namespace {

// Prints the report's blocks through the driver's device operations.
class ReportWriter
{
    Q_DECLARE_TR_FUNCTIONS(PrinterDriver)

public:
    ReportWriter(PrinterDriver& driver, int paperWidth)
        // Values start at column W - 15; a narrower paper is taken as 15 wide.
        : driver(driver), valueColumn(qMax(paperWidth, 15) - 15)
    {
    }

    QString dots(const QString& label) const
    {
        return padRight(label, valueColumn, QLatin1Char('.'));
    }

    void labelLine(const char* label, const QString& text)
    {
        driver.print(0, dots(tr(label)));
        driver.println(text);
    }

    void titleBlock(const char* title)
    {
        driver.setBold();
        driver.setCenterJustify();
        driver.println(QString());
        driver.println(tr(title));
        driver.setCharSize();
        driver.println(QString());
    }

    void serialRange(const QXmlStreamAttributes& atts)
    {
        driver.print(0, dots(tr("Serials")));
        driver.print(0, atts.value(QLatin1StringView("firstserial")).toString());
        driver.print(0, QStringLiteral(" - "));
        driver.println(atts.value(QLatin1StringView("lastserial")).toString());
    }

private:
    PrinterDriver& driver;
    int valueColumn;
};

QString attribute(const QXmlStreamAttributes& atts, const char* name)
{
    return atts.value(QLatin1StringView(name)).toString();
}

} // namespace

void PrinterDriver::printReport(const QString& qName, const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    ReportWriter report(*this, settings.paperWidth);
    if (qName == QLatin1StringView("date")) {
        setBold();
        setCenterJustify();
        println(QString());
        println(tr("SUMMARIES"));
        // Unlike the other titles, the blank line here is still centred.
        println(QString());
        setCharSize();
        print(0, tr("BeginDate: "));
        println(attribute(atts, "begindate"));
        print(0, tr("EndDate: "));
        println(attribute(atts, "enddate"));
    } else if (qName == QLatin1StringView("prefiscalssummary")) {
        report.titleBlock("PREFISCAL SUMMARY");
        report.labelLine("Number", attribute(atts, "number"));
        report.labelLine("TOTAL", attribute(atts, "total"));
    } else if (qName == QLatin1StringView("receiptssummary")) {
        report.titleBlock("RECEIPTS SUMMARY");
        report.labelLine("Number", attribute(atts, "number"));
        report.serialRange(atts);
        println(tr("Amount not paid: ") + attribute(atts, "notPaid"));
        println(tr("Cash: ") + attribute(atts, "cash"));
        println(tr("Credit Card: ") + attribute(atts, "creditCard"));
        println(tr("Bancomat: ") + attribute(atts, "bancomat"));
        println(tr("Other: ") + attribute(atts, "other"));
        report.labelLine("TOTAL", attribute(atts, "total"));
        println(QString());
        printSeparatorLine();
        println(padLeft(tr("TAXRATE"), 6) + QLatin1Char(' ') + padLeft(tr("TAXABLE"), 10)
                + QLatin1Char(' ') + padLeft(tr("TAX"), 10) + QLatin1Char(' ')
                + padLeft(tr("AMOUNT"), 10));
    } else if (qName == QLatin1StringView("taxrate_item")) {
        // The row differs from its heading on purpose: "% " after the rate
        // and one trailing blank.
        println(padLeft(attribute(atts, "taxrate"), 6) + QLatin1StringView("% ")
                + padLeft(attribute(atts, "taxable"), 10) + QLatin1Char(' ')
                + padLeft(attribute(atts, "tax"), 10) + QLatin1Char(' ')
                + padLeft(attribute(atts, "amount"), 10) + QLatin1Char(' '));
    } else if (qName == QLatin1StringView("invoicessummary")) {
        printSeparatorLine();
        println(QString());
        report.titleBlock("INVOICES SUMMARY");
        report.labelLine("Number", attribute(atts, "number"));
        report.serialRange(atts);
        report.labelLine("Taxable", attribute(atts, "taxable"));
        report.labelLine("Tax", attribute(atts, "tax"));
        report.labelLine("TOTAL", attribute(atts, "total"));
    } else if (qName == QLatin1StringView("cancelledsummary")) {
        report.titleBlock("CANCELLED DOC SUMMARY");
        report.labelLine("Number", attribute(atts, "number"));
        report.labelLine("TOTAL", attribute(atts, "totals"));
        setBold();
        println(QString());
        print(0, padRight(tr("SERIAL"), 10));
        print(0, padRight(tr("TOTAL"), 11));
        println(padRight(tr("TAXRATE"), 10));
        // The cancelled documents follow "number" and "totals" as groups of
        // three attributes (serial, total, tax rate), read by position.
        const auto at = [&atts](qsizetype i) {
            return i < atts.size() ? atts.at(i).value().toString() : QString();
        };
        for (qsizetype i = 2; i < atts.size(); i += 3) {
            print(0, padRight(at(i), 10));
            print(0, padRight(at(i + 1), 11));
            println(padRight(at(i + 2), 10));
        }
    }
}

// The list of sold items and a customer's statement of account.
#include "printerdriver.h"

void PrinterDriver::printSold(const QString& qName, const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    if (qName == QLatin1StringView("receipe")) {
        setBold();
        println(descriptionRow(value(atts, QLatin1StringView("quantity")),
                               value(atts, QLatin1StringView("description")), QString(),
                               value(atts, QLatin1StringView("amount")), QLatin1Char('.'),
                               QStringLiteral("qxdpt")));
        setCharSize();
    }
}

void PrinterDriver::printStatementOfAccount(const QString& qName,
                                            const QXmlStreamAttributes& atts)
{
    if (printSections(qName, atts))
        return;

    const QString layout = QStringLiteral("date-amount-type");
    if (qName == QLatin1StringView("statement_list")) {
        setBold();
        println(descriptionRow(tr("Date"), tr("Description"), tr("Amount"), QString(),
                               QLatin1Char(' '), layout));
        reset();
    } else if (qName == QLatin1StringView("statement")) {
        // The request sends untranslated movement types; they are looked up
        // in the label catalogue like any other label.
        const QByteArray type = value(atts, QLatin1StringView("type")).toUtf8();
        println(descriptionRow(value(atts, QLatin1StringView("date")) + QLatin1StringView(": "),
                               tr(type.constData()), value(atts, QLatin1StringView("amount")),
                               QString(), QLatin1Char('.'), layout));
    }
}

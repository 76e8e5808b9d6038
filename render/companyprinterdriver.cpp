#include "companyprinterdriver.h"


namespace {

constexpr unsigned deviceWidth = 32;
// The longest buffered line that still gets a centring pad: beyond it the
// device's unsigned pad arithmetic would wrap, so such lines stay unpadded.
constexpr qsizetype longestCentredLine = deviceWidth + 7;

const QLatin1StringView fiscalLineEnd("\r\n");

// Looks for the reserved word by its first letter, which plain item text
// rarely holds; a general substring search costs more than the rest of print.
bool containsTotale(QStringView text)
{
    for (qsizetype i = text.indexOf(QLatin1Char('T')); i >= 0;
         i = text.indexOf(QLatin1Char('T'), i + 1)) {
        if (text.sliced(i).startsWith(QLatin1StringView("TOTALE")))
            return true;
    }
    return false;
}

QString commaDecimal(QString text)
{
    return text.replace(QLatin1Char('.'), QLatin1Char(','));
}

// Reads the leading number of a decimal-comma text ("12,50", "-0,50") the way
// the fiscal printer would; text that does not start with a number reads as 0.
double leadingCommaNumber(const QString& text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    QString number;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
        number += text.at(i++);
    bool seenComma = false;
    bool seenDigit = false;
    for (; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            number += c;
            seenDigit = true;
        } else if (c == QLatin1Char(',') && !seenComma) {
            number += QLatin1Char('.');
            seenComma = true;
        } else {
            break;
        }
    }
    return seenDigit ? number.toDouble() : 0.0;
}

} // namespace

CompanyPrinterDriver::CompanyPrinterDriver(const QString& fileName)
    : PrinterDriver(fileName, false), line(QLatin1String(""))
{
}

CompanyPrinterDriver::CompanyPrinterDriver(std::unique_ptr<QIODevice> device)
    : PrinterDriver(std::move(device)), line(QLatin1String(""))
{
}

unsigned CompanyPrinterDriver::getPaperWidth()
{
    return deviceWidth;
}

void CompanyPrinterDriver::setBold() {}

void CompanyPrinterDriver::setCharSize()
{
    justify = QStringLiteral("left");
}

void CompanyPrinterDriver::setCharSize(int)
{
    justify = QStringLiteral("left");
}

void CompanyPrinterDriver::setCenterJustify()
{
    justify = QStringLiteral("center");
}

void CompanyPrinterDriver::fullCut() {}

void CompanyPrinterDriver::generatePulse() {}

void CompanyPrinterDriver::printLogo() {}

bool CompanyPrinterDriver::isFiscal() const
{
    return currentMethod == QLatin1StringView("printAbstractOrderFiscal")
        || currentMethod == QLatin1StringView("printFullOrderFiscal");
}

void CompanyPrinterDriver::write(const QString& text)
{
    // Without an output file the run goes on and its lines are dropped.
    if (stream)
        *stream << text;
}

void CompanyPrinterDriver::startSection()
{
    write(QStringLiteral("\n"));
    if (isFiscal())
        return;
    write(QStringLiteral("j\n"));
    line = QStringLiteral("\"");
}

void CompanyPrinterDriver::endSection()
{
    write(isFiscal() ? QStringLiteral("1T\n") : QStringLiteral("J\n"));
}

void CompanyPrinterDriver::print(unsigned int indent, const QString& text)
{
    // The device reserves the word TOTALE: it must reach the paper as SOMMA.
    if (indent)
        line.resize(line.size() + qsizetype(indent), QLatin1Char(' '));
    if (containsTotale(text)) {
        QString copy = text;
        copy.replace(QLatin1StringView("TOTALE"), QLatin1StringView("SOMMA"));
        line.append(copy);
    } else {
        line.append(text);
    }
}

void CompanyPrinterDriver::println(unsigned int indent, const QString& text)
{
    print(indent, text);
    line.append(QLatin1StringView("\"@\n"));
    if (justify == QLatin1StringView("center") && line.size() <= longestCentredLine) {
        const qsizetype pad = (longestCentredLine - line.size()) / 2;
        line.insert(1, QString(pad, QLatin1Char(' ')));
    }
    write(line);
    line.resize(0);
    line.append(QLatin1Char('"'));
}

void CompanyPrinterDriver::println(const QString& text)
{
    println(0, text);
}

void CompanyPrinterDriver::writeFiscalItem(const QString& department, const QString& quantity,
                                           const QString& description, const QString& price)
{
    write(QLatin1Char('"') + description + QLatin1Char('"') + quantity + QLatin1Char('*')
          + commaDecimal(price) + QLatin1Char('H') + department);
}

void CompanyPrinterDriver::printRowFiscal(const QString& department, const QString& quantity,
                                          const QString& description, const QString& price)
{
    writeFiscalItem(department, quantity, description, price);
    write(QLatin1String("R") + fiscalLineEnd);
}

void CompanyPrinterDriver::printRowFiscal(const QString& department, const QString& quantity,
                                          const QString& description, const QString& price,
                                          const QString& adjustment)
{
    writeFiscalItem(department, quantity, description, price);
    const bool discount = adjustment.startsWith(QLatin1Char('-'));
    write(QLatin1Char('R') + commaDecimal(adjustment)
          + (discount ? QLatin1StringView("*5M") : QLatin1StringView("*1M")) + fiscalLineEnd);
}

void CompanyPrinterDriver::printRowFiscal(const QString& name, const QXmlStreamAttributes& atts)
{
    const QString cash = commaDecimal(value(atts, QLatin1StringView("cash")));
    const QString creditCard = commaDecimal(value(atts, QLatin1StringView("creditCard")));
    const QString cheque = commaDecimal(value(atts, QLatin1StringView("cheque")));
    const QString ticket = commaDecimal(value(atts, QLatin1StringView("ticket")));
    const QString discountRate = commaDecimal(value(atts, QLatin1StringView("discountRate")));
    if (name != QLatin1StringView("totals"))
        return;

    const auto writeUnlessZero = [this](const QString& amount, const QString& commandLine) {
        if (leadingCommaNumber(amount) != 0.0)
            write(commandLine + fiscalLineEnd);
    };
    writeUnlessZero(discountRate, QLatin1Char('=') + discountRate + QLatin1StringView("*2M"));
    writeUnlessZero(cash, cash + QLatin1StringView("H1T"));
    writeUnlessZero(creditCard, creditCard + QLatin1StringView("H3T"));
    writeUnlessZero(cheque, cheque + QLatin1StringView("H2T"));
    writeUnlessZero(ticket, ticket + QLatin1StringView("H5T"));
}

#include "companyprinterdriver.h"

#include "asciiblocks.h"
#include "emptytext.h"

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

// The longest buffered line that still gets a centring pad: beyond it the
// device's unsigned pad arithmetic would wrap, so such lines stay unpadded.
constexpr qsizetype longestCentredLine = defaultPaperWidth + 7;

constexpr QLatin1StringView fiscalLineEnd("\r\n");
constexpr QLatin1StringView lineClose("\"@\n");

const QString quote = u"\""_s;
constexpr QStringView blanks(u"                                ");

// Every printed line is searched for the reserved word: by its first letter,
// which plain item text rarely holds, in a loop of the device's own rather
// than a general substring search; in text or in bytes.
template<typename Char>
bool containsTotale(const Char* chars, qsizetype size)
{
    static constexpr char rest[] = "OTALE";
    for (qsizetype i = AsciiBlocks::indexOf(chars, size, Char('T')); i >= 0 && i <= size - 6;
         i = AsciiBlocks::indexOf(chars, size, Char('T'), i + 1)) {
        if (std::equal(rest, rest + 5, chars + i + 1))
            return true;
    }
    return false;
}

bool containsTotale(QStringView text)
{
    return containsTotale(text.utf16(), text.size());
}

bool containsTotale(QByteArrayView text)
{
    return containsTotale(text.data(), text.size());
}

// The device reserves the word TOTALE: it must reach the paper as SOMMA.
QString withoutReservedWord(const QString& text)
{
    return containsTotale(text) ? QString(text).replace("TOTALE"_L1, "SOMMA"_L1) : text;
}

// A double quote inside printed text would close the printer's line (or a
// fiscal field) there and make the rest a command.
QString withoutQuotes(QString text)
{
    if (AsciiBlocks::indexOf(QStringView(text).utf16(), text.size(), u'"') >= 0)
        text.replace(u'"', u'\'');
    return text;
}

QString commaDecimal(QStringView text)
{
    return text.toString().replace(u'.', u',');
}

// Reads the leading number of a decimal-comma text ("12,50", "-0,50") the way
// the fiscal printer would; text that does not start with a number reads as 0.
double leadingCommaNumber(const QString& text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    QString number;
    if (i < text.size() && (text.at(i) == u'-' || text.at(i) == u'+'))
        number += text.at(i++);
    bool seenComma = false;
    bool seenDigit = false;
    for (; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c >= u'0' && c <= u'9') {
            number += c;
            seenDigit = true;
        } else if (c == u',' && !seenComma) {
            number += u'.';
            seenComma = true;
        } else {
            break;
        }
    }
    return seenDigit ? number.toDouble() : 0.0;
}

} // namespace

CompanyPrinterDriver::CompanyPrinterDriver(QIODevice& device, const ZTConfiguration& configuration)
    : PrinterDriver(device, configuration), line(emptyText())
{
}

unsigned CompanyPrinterDriver::getPaperWidth()
{
    return defaultPaperWidth;
}

void CompanyPrinterDriver::setBold() {}

void CompanyPrinterDriver::setCharSize()
{
    justify = Justification::Left;
}

void CompanyPrinterDriver::setCharSize(int)
{
    justify = Justification::Left;
}

void CompanyPrinterDriver::setCenterJustify()
{
    justify = Justification::Center;
}

void CompanyPrinterDriver::fullCut() {}

void CompanyPrinterDriver::generatePulse() {}

void CompanyPrinterDriver::printLogo() {}

void CompanyPrinterDriver::startSection()
{
    write("\n"_L1);
    if (isFiscal())
        return;
    write("j\n"_L1);
    line = quote;
}

void CompanyPrinterDriver::endSection()
{
    write(isFiscal() ? "1T\n"_L1 : "J\n"_L1);
}

void CompanyPrinterDriver::print(unsigned int indent, const QString& text)
{
    if (indent)
        line.resize(line.size() + qsizetype(indent), u' ');
    QString storage;
    line.append(printedText(text, storage));
}

QStringView CompanyPrinterDriver::printedText(const QString& text, QString& storage) const
{
    // Most lines need none of the changes: they go out as they are, not
    // copied.
    const QString* printed = &text;
    if (containsTotale(text)) {
        storage = withoutReservedWord(text);
        printed = &storage;
    }
    if (!printsAsItStands(*printed)) {
        storage = printable(*printed);
        printed = &storage;
    }
    if (settings.safeText && printed->contains(u'"')) {
        storage = withoutQuotes(*printed);
        printed = &storage;
    }
    return *printed;
}

void CompanyPrinterDriver::println(unsigned int indent, const QString& text)
{
    if (justify == Justification::Center) {
        print(indent, text);
        line.append(lineClose);
        const qsizetype length = printedLength(line);
        if (length <= longestCentredLine)
            line.insert(1, QString((longestCentredLine - length) / 2, u' '));
        write(line);
    } else {
        // A left-aligned line needs no measuring: its pieces go out as they
        // are, without being gathered first.
        QString storage;
        const QStringView printed = printedText(text, storage);
        if (indent <= unsigned(blanks.size())) {
            write(line, blanks.first(indent), printed, lineClose);
        } else {
            write(line);
            for (; indent > unsigned(blanks.size()); indent -= unsigned(blanks.size()))
                write(blanks);
            write(blanks.first(indent), printed, lineClose);
        }
    }
    // Most lines leave the line as it was begun: the quote alone.
    if (line.size() != 1 || line.front() != u'"')
        line = quote;
}

void CompanyPrinterDriver::println(const QString& text)
{
    println(0, text);
}

bool CompanyPrinterDriver::printEncodedLine(QByteArrayView text)
{
    // Only the plain case: a left-aligned line begun with nothing but its
    // quote, holding neither the reserved word nor, where text is made safe,
    // a double quote. Anything else goes through println.
    if (justify != Justification::Left || line.size() != 1 || line.front() != u'"')
        return false;
    if (containsTotale(text) || (settings.safeText && text.contains('"')))
        return false;
    if (stream)
        stream->writeBytes("\"", text, lineClose);
    return true;
}

void CompanyPrinterDriver::writeFiscalItem(const QString& department, const QString& quantity,
                                           const QString& description, const QString& price)
{
    if (settings.safeText) {
        write(printable(u'"' + withoutQuotes(description) + u'"' + withoutQuotes(quantity) + u'*'
                        + withoutQuotes(commaDecimal(price)) + u'H' + withoutQuotes(department)));
        return;
    }
    write(printable(u'"' + description + u'"' + quantity + u'*' + commaDecimal(price) + u'H' + department));
}

void CompanyPrinterDriver::printRowFiscal(const QString& department, const QString& quantity,
                                          const QString& description, const QString& price)
{
    writeFiscalItem(department, quantity, description, price);
    write("R\r\n"_L1);
}

void CompanyPrinterDriver::printRowFiscal(const QString& department, const QString& quantity,
                                          const QString& description, const QString& price,
                                          const QString& adjustment)
{
    writeFiscalItem(department, quantity, description, price);
    const bool discount = adjustment.startsWith(u'-');
    write(u"R"_s + commaDecimal(adjustment) + (discount ? "*5M"_L1 : "*1M"_L1) + fiscalLineEnd);
}

void CompanyPrinterDriver::printRowFiscal(const QString& name, const XmlAttributes& atts)
{
    const auto amount = [this, &atts](QLatin1StringView name) {
        const QString text = commaDecimal(atts.value(name));
        return settings.safeText ? withoutQuotes(text) : text;
    };
    const QString cash = amount("cash"_L1);
    const QString creditCard = amount("creditCard"_L1);
    const QString cheque = amount("cheque"_L1);
    const QString ticket = amount("ticket"_L1);
    const QString discountRate = amount("discountRate"_L1);
    if (name != "totals"_L1)
        return;

    const auto writeUnlessZero = [this](const QString& amount, const QString& commandLine) {
        if (leadingCommaNumber(amount) != 0.0)
            write(commandLine + fiscalLineEnd);
    };
    writeUnlessZero(discountRate, u"="_s + discountRate + "*2M"_L1);
    writeUnlessZero(cash, cash + "H1T"_L1);
    writeUnlessZero(creditCard, creditCard + "H3T"_L1);
    writeUnlessZero(cheque, cheque + "H2T"_L1);
    writeUnlessZero(ticket, ticket + "H5T"_L1);
}

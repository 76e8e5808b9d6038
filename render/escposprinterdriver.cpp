#include "escposprinterdriver.h"

#include "diagnostics.h"
#include "escpos.h"
#include "rasterlogo.h"

using namespace Qt::StringLiterals;

EscPosPrinterDriver::EscPosPrinterDriver(QIODevice& device, const ZTConfiguration& configuration)
    : CompanyPrinterDriver(device, configuration)
{
}

void EscPosPrinterDriver::command(QByteArrayView bytes)
{
    if (stream)
        stream->writeBytes(bytes);
}

// The dialect of the document just chosen; a fiscal receipt belongs to the
// fiscal printer whatever its settings say.
bool EscPosPrinterDriver::choosesEscPos()
{
    const auto key = [this] { return (docPath + SettingKey::dialect).toLatin1(); };
    if (!settings.unknownDialect.isEmpty()) {
        printDiagnostic({"Unknown dialect \"", settings.unknownDialect.toLocal8Bit(), "\" in ", key(),
                         ": the document is written as command text"});
    }
    if (settings.dialect != Dialect::EscPos)
        return false;
    if (isFiscal()) {
        printDiagnostic({"A fiscal document is printed by the fiscal printer: ", key(),
                         " \"escpos\" is ignored and the document is written as command text"});
        return false;
    }
    return true;
}

void EscPosPrinterDriver::startSection()
{
    // One paper per document: an ESC/POS document before this one is
    // finished and cut first.
    if (sectionOpen)
        endSection();
    escPos = choosesEscPos();
    if (!escPos)
        return CompanyPrinterDriver::startSection();
    command(EscPos::initialize);
    selectCodePage();
    sent = wanted = Modes{};
    line.clear();
    sectionOpen = true;
    drawerAtEnd = settings.openCashDrawer;
    feedAtEnd = settings.cutFeed;
}

void EscPosPrinterDriver::selectCodePage()
{
    int number = settings.codePageNumber;
    if (number < 0)
        number = EscPos::codePageNumber(codePageInForce().name());
    if (number < 0) {
        printDiagnostic({"Code page ", codePageInForce().name(), " has no ESC/POS number; set ",
                         (docPath + SettingKey::codePageNumber).toLatin1(),
                         ": the document is written in CP437, the printer's first page"});
        chooseCodePage("CP437"_ba);
        number = 0;
    }
    command(EscPos::selectCodePage(number));
}

void EscPosPrinterDriver::endSection()
{
    if (!sectionOpen)
        return CompanyPrinterDriver::endSection();
    if (drawerAtEnd)
        generatePulse();
    command(EscPos::feedLines(feedAtEnd));
    fullCut();
    sectionOpen = false;
}

void EscPosPrinterDriver::setBold()
{
    if (!escPos)
        return CompanyPrinterDriver::setBold();
    wanted.bold = true;
}

void EscPosPrinterDriver::setCharSize()
{
    if (!escPos)
        return CompanyPrinterDriver::setCharSize();
    wanted = Modes{};
}

void EscPosPrinterDriver::setCharSize(int size)
{
    if (!escPos)
        return CompanyPrinterDriver::setCharSize(size);
    // Only the height doubles, so that a line keeps its columns.
    if (size > 0)
        wanted.doubleHeight = true;
    else
        wanted = Modes{};
}

void EscPosPrinterDriver::setCenterJustify()
{
    if (!escPos)
        return CompanyPrinterDriver::setCenterJustify();
    wanted.centred = true;
}

void EscPosPrinterDriver::fullCut()
{
    if (!escPos)
        return CompanyPrinterDriver::fullCut();
    command(EscPos::partialCut);
}

void EscPosPrinterDriver::generatePulse()
{
    if (!escPos)
        return CompanyPrinterDriver::generatePulse();
    command(EscPos::drawerPulse);
}

void EscPosPrinterDriver::sendModes(Modes modes)
{
    if (modes.bold != sent.bold)
        command(EscPos::bold(modes.bold));
    if (modes.doubleHeight != sent.doubleHeight)
        command(EscPos::doubleHeight(modes.doubleHeight));
    if (modes.centred != sent.centred)
        command(EscPos::centred(modes.centred));
    sent = modes;
}

void EscPosPrinterDriver::print(unsigned int indent, const QString& text)
{
    if (!escPos)
        return CompanyPrinterDriver::print(indent, text);
    if (indent)
        line.resize(line.size() + qsizetype(indent), u' ');
    line.append(printable(text));
}

void EscPosPrinterDriver::println(unsigned int indent, const QString& text)
{
    if (!escPos)
        return CompanyPrinterDriver::println(indent, text);
    print(indent, text);
    sendModes(wanted);
    if (stream)
        *stream << line << "\n"_L1;
    line.clear();
}

void EscPosPrinterDriver::println(const QString& text)
{
    println(0, text);
}

bool EscPosPrinterDriver::printEncodedLine(QByteArrayView text)
{
    if (!escPos)
        return CompanyPrinterDriver::printEncodedLine(text);
    if (!line.isEmpty())
        return false;
    sendModes(wanted);
    if (stream)
        stream->writeBytes(text, "\n");
    return true;
}

void EscPosPrinterDriver::printLogo()
{
    if (!escPos)
        return CompanyPrinterDriver::printLogo();
    if (!settings.printLogo || settings.logo.isEmpty())
        return;
    const QByteArray& image = logoCommand();
    if (image.isEmpty())
        return;
    // The printer centres the picture on its paper; the lines after it
    // keep the alignment they ask for.
    sendModes({sent.bold, sent.doubleHeight, true});
    command(image);
}

const QByteArray& EscPosPrinterDriver::logoCommand()
{
    if (settings.logo == logoPath && settings.dotsPerLine == logoDots)
        return logoBytes;
    logoPath = settings.logo;
    logoDots = settings.dotsPerLine;
    logoBytes.clear();
    QString error;
    const std::optional<RasterImage> image = readRasterLogo(logoPath, logoDots, &error);
    if (!image) {
        printDiagnostic({"The logo ", logoPath.toLocal8Bit(), " in ", (docPath + SettingKey::logo).toLatin1(),
                         " cannot be read (", error.toLocal8Bit(), "): nothing is printed for it"});
        return logoBytes;
    }
    // GS v 0: raster bit image, normal scale, its width in bytes and its
    // height in dots, each as two bytes, low first.
    const int widthBytes = image->bytesPerRow();
    const char header[] = {EscPos::gs, 'v', '0', '\0', char(widthBytes & 0xff), char(widthBytes >> 8),
                           char(image->height & 0xff), char((image->height >> 8) & 0xff)};
    logoBytes = QByteArray(header, sizeof header) + image->bits;
    return logoBytes;
}

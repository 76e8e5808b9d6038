#pragma once

#include "companyprinterdriver.h"

#include <QByteArray>

// The thermal printers of kitchens and counters: documents whose dialect is
// "escpos" are written in ESC/POS, the others (fiscal documents always) in
// the command text this device inherits, so that one request can hold
// documents for both. A document's section opens with the printer's reset
// and its code page, and closes with the drawer's pulse, a feed and a cut;
// bold, double height and centring are the printer's own modes, sent only
// when they change, just before the line they apply to.
class EscPosPrinterDriver : public CompanyPrinterDriver
{
public:
    EscPosPrinterDriver(QIODevice& device, const ZTConfiguration& configuration);

    // Print modes: kept, and sent before the next line when they change.
    void setBold() override;
    void setCharSize() override;
    void setCharSize(int size) override;
    void setCenterJustify() override;

    // The paper and the drawer.
    void printLogo() override;
    void generatePulse() override;
    void fullCut() override;

    // Sections and their lines.
    void startSection() override;
    void endSection() override;
    void print(unsigned int indent, const QString& text) override;
    void println(unsigned int indent, const QString& text) override;
    void println(const QString& text) override;
    bool printEncodedLine(QByteArrayView text) override;

private:
    struct Modes
    {
        bool bold = false;
        bool doubleHeight = false;
        bool centred = false;
    };

    bool choosesEscPos();
    void selectCodePage();
    void sendModes(Modes wanted);
    void command(QByteArrayView bytes);
    // The raster command of the document's logo, read once per file and
    // width; empty when it cannot be read.
    const QByteArray& logoCommand();

    bool escPos = false;
    // An ESC/POS section is open: the next one, or the end, closes it with
    // its own drawer and feed.
    bool sectionOpen = false;
    bool drawerAtEnd = false;
    int feedAtEnd = 0;
    Modes sent;   // as the printer has them
    Modes wanted; // for the next line
    QString line;

    QString logoPath;
    int logoDots = 0;
    QByteArray logoBytes;
};

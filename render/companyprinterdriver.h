#pragma once

#include "printerdriver.h"

// The receipt printer's command text: every printed line is framed by a
// double quote and a closing "@, sections are opened by "j" and closed by
// "J"; fiscal documents write fiscal-printer command lines instead.
class CompanyPrinterDriver : public PrinterDriver
{
public:
    CompanyPrinterDriver(QIODevice& device, const ZTConfiguration& configuration);

    // Printed lines, framed; the text stays on the line until println.
    void print(unsigned int indent, const QString& text) override;
    void println(unsigned int indent, const QString& text) override;
    void println(const QString& text) override;
    bool printEncodedLine(QByteArrayView text) override;
    void startSection() override;
    void endSection() override;

    // Fiscal command lines.
    void printRowFiscal(const QString& name, const XmlAttributes& atts) override;
    void printRowFiscal(const QString& department, const QString& quantity,
                        const QString& description, const QString& price) override;
    virtual void printRowFiscal(const QString& department, const QString& quantity,
                                const QString& description, const QString& price,
                                const QString& adjustment);

    // The paper and its modes: only centring reaches the command text.
    unsigned getPaperWidth() override;
    void setBold() override;
    void setCharSize() override;
    void setCharSize(int size) override;
    void setCenterJustify() override;
    void fullCut() override;
    void generatePulse() override;
    void printLogo() override;

private:
    // Without an output file the run goes on and its lines are dropped.
    template<typename... Pieces>
    void write(const Pieces&... pieces)
    {
        if (stream)
            stream->write(pieces...);
    }
    // Text as it goes between the quotes of a printed line: `text` itself,
    // or `storage` holding it changed.
    QStringView printedText(const QString& text, QString& storage) const;
    void writeFiscalItem(const QString& department, const QString& quantity,
                         const QString& description, const QString& price);

    QString line;
};

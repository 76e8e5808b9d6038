#pragma once

#include "companyprinterdriver.h"
#include "ztconfiguration.h"

#include <QBuffer>

#include <initializer_list>
#include <utility>

// The settings the renderer tests run with.
const ZTConfiguration& testConfiguration();

// The memory the test driver writes to, made before the driver opens it.
struct TestPrintFile
{
    QBuffer printFile;
};

// The device writing into memory, with the settings open to the tests.
class TestDriver : private TestPrintFile, public CompanyPrinterDriver
{
public:
    TestDriver() : CompanyPrinterDriver(printFile, testConfiguration()) {}

    using PrinterDriver::chooseCodePage;
    using PrinterDriver::docPath;
    using PrinterDriver::printRow;
    using PrinterDriver::justify;
    using PrinterDriver::settings;

    QByteArray bytes()
    {
        flush();
        return printFile.data();
    }
    void setWidths(int w, int q, int p, int t)
    {
        settings.paperWidth = w;
        settings.quantityFieldWidth = q;
        settings.priceFieldWidth = p;
        settings.totalPriceFieldWidth = t;
    }
    bool element(const QString& name, const XmlAttributes& atts = {})
    {
        return startElement(QString(), name, name, atts);
    }
    bool selectMethod(const QString& name) { return element(QStringLiteral("method"), attrs({{"name", name}})); }

    static XmlAttributes attrs(std::initializer_list<std::pair<const char*, QString>> list)
    {
        XmlAttributes atts;
        for (const auto& [name, value] : list)
            atts.append(QString::fromLatin1(name), value);
        return atts;
    }
};

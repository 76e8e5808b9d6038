#include "preview.h"
#include "printfile.h"

#include "codepage.h"
#include "companyprinterdriver.h"
#include "diagnostics.h"

#include <QBuffer>

using namespace Qt::StringLiterals;

namespace preview {

namespace {

// A print file does not say which document it holds: its paper is taken to
// be the widest that any document type is configured with, so that no
// document's own lines are flagged as too wide.
int widestConfiguredPaper(const ZTConfiguration* configuration)
{
    // The driver itself reads the settings, fallback width and all.
    DiagnosticCapture quiet;
    CompanyPrinterDriver driver(std::make_unique<QBuffer>(), configuration);
    int widest = int(driver.getPaperWidth());
    XmlAttributes method;
    for (QLatin1StringView name : PrinterDriver::documentMethods()) {
        method.clear();
        method.append(u"name"_s, QString(name));
        driver.startElement({}, u"method"_s, u"method"_s, method);
        widest = qMax(widest, driver.documentSettings().paperWidth);
    }
    return widest;
}

} // namespace

Paper previewPrintFile(const QByteArray& printFile, const QString& source, const PreviewSettings& settings)
{
    SectionSetup setup;
    setup.paperWidth = settings.width > 0 ? settings.width : widestConfiguredPaper(settings.configuration);
    setup.codePage = settings.codePage.isEmpty() ? CodePage::localeEncoding() : settings.codePage;
    return readPrintFile(printFile, {setup}, source);
}

Paper previewInput(const QByteArray& input, const QString& source, const PreviewSettings& settings)
{
    Paper paper = looksLikeRequest(input) ? previewRequest(input, source, settings)
                                          : previewPrintFile(input, source, settings);
    flagUnclosedEnd(paper);
    flagWideRows(paper);
    return paper;
}

} // namespace preview

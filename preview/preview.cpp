#include "preview.h"
#include "printfile.h"

#include "codepage.h"
#include "documentsettings.h"
#include "documenttypes.h"

using namespace Qt::StringLiterals;

namespace preview {

namespace {

// A print file does not say which document it holds: its paper is taken to
// be the widest that any document type is configured with, so that no
// document's own lines are flagged as too wide.
int widestConfiguredPaper(const ZTConfiguration& configuration)
{
    int widest = defaultPaperWidth;
    for (const DocumentType* type : DocumentTypes::all())
        widest = qMax(widest, readDocumentSettings(configuration, *type).paperWidth);
    return widest;
}

} // namespace

void applyWidth(std::vector<SectionSetup>& setups, const PreviewSettings& settings)
{
    if (settings.width <= 0)
        return;
    for (SectionSetup& setup : setups)
        setup.paperWidth = settings.width;
}

Paper previewPrintFile(const QByteArray& printFile, const QString& source, const PreviewSettings& settings)
{
    SectionSetup setup;
    setup.paperWidth = widestConfiguredPaper(*settings.configuration);
    setup.codePage = settings.codePage.isEmpty() ? CodePage::localeEncoding() : settings.codePage;
    std::vector<SectionSetup> setups{setup};
    applyWidth(setups, settings);
    return readPrintFile(printFile, setups, source);
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

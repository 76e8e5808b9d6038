// Feeds arbitrary bytes to the preview as a request, a command-text print
// file or an ESC/POS one (as the content says: ESC @ first) and checks that the SVG picture it draws is well-formed XML
// whatever the input holds.
#include "preview.h"
#include "textpictures.h"
#include "xmlreader.h"
#include "ztconfiguration.h"

#include <QBuffer>
#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

const char configuration[] = R"(zentaro : {
    doc : { quantityFieldWidth = 3; paperWidth = 32; codePage = "CP437"; topMargin = "two";
            printGeometry = "true"; printHeader = "yes"; printCompany = "true"; };
    receiptdoc : { quantityFieldWidth = 3; priceFieldWidth = 8; totalPriceFieldWidth = 9;
            paperWidth = 40; printCustomer = "true"; printDate = "true"; codePage = "US-ASCII"; };
    prefiscaldoc : { dialect = "escpos"; codePage = "CP858"; paperWidth = 32; openCashDrawer = "true"; };
    solddoc : { dialect = "escpos"; codePage = "ISO-8859-15"; printLogo = "true"; logo = "/nonexistent.png"; };
    fiscaldoc : { descriptionWidth = 12; paperWidth = 24; };
    reportdoc : { paperWidth = "wide"; priceFieldWidth = 8; };
};
)";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const auto settings = ZTConfiguration::fromText(configuration);
    preview::PreviewSettings previewSettings;
    previewSettings.configuration = settings.get();
    const QByteArray input(reinterpret_cast<const char*>(data), qsizetype(size));
    const preview::Paper paper = preview::previewInput(input, QStringLiteral("fuzz.xml"), previewSettings);

    QBuffer svg;
    svg.setData(preview::svgPicture(paper));
    svg.open(QIODevice::ReadOnly);
    XmlContentHandler ignore;
    if (!XmlReader(ignore).parse(&svg))
        std::abort();
    return 0;
}

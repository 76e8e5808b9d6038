// The two dialects print the same lines: a request rendered in ESC/POS
// reads back, through the preview's reader, as the text of its command-text
// render, line for line.
#include "documenttypes.h"
#include "printfile.h"
#include "render.h"

#include "testsupport.h"
#include "ztconfiguration.h"

#include <QBuffer>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace preview;

namespace {

// The printed lines of a print file, centred ones trimmed: the command
// text centres them with blanks, an ESC/POS printer by itself.
QStringList printedLines(const QByteArray& printFile, const std::vector<bool>& centred = {})
{
    SectionSetup setup;
    setup.codePage = "CP858";
    QStringList lines;
    for (const Section& section : readPrintFile(printFile, {setup}, u"p"_s).sections) {
        for (const Row& row : section.rows) {
            if (row.style != Row::Style::Paper || row.image)
                continue;
            const bool trim = row.centred || (std::size_t(lines.size()) < centred.size() && centred[lines.size()]);
            lines << (trim ? row.text.trimmed() : row.text);
        }
    }
    return lines;
}

// Which of the printed lines of an ESC/POS print file are centred.
std::vector<bool> centredLines(const QByteArray& printFile)
{
    SectionSetup setup;
    std::vector<bool> centred;
    for (const Section& section : readPrintFile(printFile, {setup}, u"p"_s).sections) {
        for (const Row& row : section.rows) {
            if (row.style == Row::Style::Paper && !row.image)
                centred.push_back(row.centred);
        }
    }
    return centred;
}

QByteArray rendered(const QString& requestPath, const QByteArray& dialect)
{
    QByteArray settings;
    for (const DocumentType* type : DocumentTypes::all()) {
        settings += type->prefix.sliced(8).chopped(1).toString().toLatin1() + " : { codePage = \"CP858\"; dialect = \""
                    + dialect + "\"; };\n";
    }
    QByteArray conf = testsupport::readBytes(QStringLiteral(GOLDEN_DEFAULTS));
    conf.insert(conf.indexOf('{') + 1, "\n" + settings);
    const auto configuration = ZTConfiguration::fromText(conf);
    QFile request(requestPath);
    request.open(QIODevice::ReadOnly);
    QBuffer out;
    renderRequest(request, out, *configuration);
    return out.data();
}

TEST(EscPos, PrintsTheLinesOfTheCommandText)
{
    const QString cases = QFileInfo(QStringLiteral(GOLDEN_DEFAULTS)).path();
    for (const char* name : {"receipt_full", "kitchen_ticket", "invoice_full", "period_report", "sold_items",
                             "statement_of_account", "escpos_receipt", "delivery_note"}) {
        const QString request = cases + u'/' + QLatin1StringView(name) + "/request.xml"_L1;
        const QByteArray escPos = rendered(request, "escpos");
        ASSERT_TRUE(escPos.startsWith("\x1b@")) << name;
        const QStringList escPosLines = printedLines(escPos);
        const QStringList commandText = printedLines(rendered(request, "command-text"), centredLines(escPos));
        EXPECT_EQ(escPosLines, commandText) << name;
    }
}

} // namespace

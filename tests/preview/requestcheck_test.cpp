// What the preview finds wrong with a request, with where the request says
// it and on which printed line it shows.
#include "findings.h"
#include "preview.h"

#include "testsupport.h"
#include "ztconfiguration.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace preview;

namespace {

const QByteArray baseSettings = R"(
    receiptdoc : { quantityFieldWidth = 3; priceFieldWidth = 8; totalPriceFieldWidth = 9; paperWidth = 40;
                   printDate = "true"; printCustomer = "true"; safeText = "true"; };
    doc : { quantityFieldWidth = 3; paperWidth = 32; printDate = "true"; };
)";

QStringList findings(const QByteArray& request, const QByteArray& settings = {})
{
    const auto configuration = ZTConfiguration::fromText("zentaro : {\n" + settings + baseSettings + "};\n");
    PreviewSettings previewSettings;
    previewSettings.configuration = configuration.get();
    return findingLines(previewInput(request, u"r.xml"_s, previewSettings));
}

TEST(RequestCheck, FindsWhatTheDocumentDoesNotRead)
{
    struct Case { const char* name; QByteArray request; QStringList expected; };
    const Case cases[] = {
        {"a clean receipt",
         "<r>\n<method name=\"printFullOrderReceipt\"/>\n"
         "<printers name=\"Cassa\" charsize=\"1\" ipaddress=\"10.0.0.1\" port=\"9100\"/>\n"
         "<orderinfo date=\"21/11\" time=\"switched off, so not read\"/>\n"
         "<receipe number=\"2\" name=\"Pizza\" price=\"7.50\" totalPrice=\"15.00\"/>\n</r>\n",
         {}},
        {"a misspelt element and attribute",
         "<r>\n<method name=\"printFullOrderReceipt\"/>\n"
         "<recipe number=\"1\" name=\"Acqua\"/>\n"
         "<receipe number=\"2\" name=\"Pizza\"\n         price=\"7.50\" totalprice=\"15.00\"/>\n"
         "<total price=\"15.00\" amount=\"15.00\"/>\n</r>\n",
         {u"r.xml: printed line 1: element <recipe> is not read by printFullOrderReceipt; "
          "did you mean <receipe>? (request line 3, column 1)"_s,
          u"r.xml: printed line 2: attribute \"totalprice\" of <receipe> is not read by printFullOrderReceipt; "
          "did you mean \"totalPrice\"? (request line 5, column 23)"_s,
          u"r.xml: printed line 4: attribute \"amount\" of <total> is not read by printFullOrderReceipt "
          "(request line 6, column 22)"_s}},
        {"elements before the method element, which reads only its name",
         "<r>\n  <customer name=\"Anna\"/>\n  <method name=\"printFullOrderReceipt\" copies=\"2\"/>\n"
         "  <total price=\"1.00\"/>\n</r>\n",
         {u"r.xml: printed line 1: element <customer> comes before the method element: it is not read "
          "(request line 2, column 3)"_s,
          u"r.xml: printed line 1: attribute \"copies\" of <method> is not read: only \"name\" is "
          "(request line 3, column 40)"_s}},
        {"an element of another document",
         "<r><method name=\"printAbstractOrderReceipt\"/><customer name=\"Anna\"/>"
         "<receipe_type number=\"1\" name=\"Pizza\" price=\"7.50\"/></r>",
         {u"r.xml: printed line 1: element <customer> is not read by printAbstractOrderReceipt "
          "(request line 1, column 46)"_s}},
        {"an unknown method stops the request",
         "<r>\n<method name=\"printRecipe\"/>\n<receipe number=\"1\" name=\"Pizza\"/>\n</r>\n",
         {u"r.xml: no printed line: method \"printRecipe\" is no document method: the print run reports "
          "\"File Format Not Supported\" and prints nothing from here on (request line 2, column 1)"_s}},
        {"no method element",
         "<r>\n<receipe number=\"1\" name=\"Pizza\"/>\n</r>\n",
         {u"r.xml: no printed line: element <receipe> comes before the method element: it is not read "
          "(request line 2, column 1)"_s,
          u"r.xml: no printed line: the request has no method element: nothing is printed"_s}},
        {"a double quote in printed text, harmless where safeText is on or its switch is off",
         "<r>\n<method name=\"printPartialOrder\"/>\n<receipe number='1' name='Pizza \"4\"'/>\n"
         "<orderinfo note='the \"usual\"'/>\n"
         "<method name=\"printFullOrderReceipt\"/>\n<receipe number='1' name='Pizza \"4\"' price='1' totalPrice='1'/>\n</r>\n",
         {u"r.xml: printed line 1: attribute \"name\" of <receipe> holds a double quote, which ends the printer's "
          "line early; safeText = \"true\" prints it as an apostrophe (request line 3, column 21)"_s}},
        {"a request that breaks off",
         "<r>\n<method name=\"printPartialOrder\"/>\n<receipe number=\"1\" name=\"Pizza\"/>\n<receipe number=",
         {u"r.xml: printed line 1: the request is not well-formed XML at line 4: nothing after it is printed "
          "(request line 4)"_s,
          u"r.xml: printed line 1: the print file ends inside this section: it is not closed and the paper is "
          "not cut"_s}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(findings(c.request), c.expected) << c.name;
}

TEST(RequestCheck, FindsSettingsThatReadAsZeroOrFalse)
{
    const QByteArray request = "<r><method name=\"printPartialOrder\"/><receipe number=\"1\" name=\"Pizza\"/>"
                               "<method name=\"printPartialOrder\"/></r>";
    // Empty text and "false" are what they say; each key is named once,
    // though a second method element of the same type reads it again.
    const QByteArray settings = R"(doc : { printTime = "yes"; printTable = ""; printNote = "false";
                                           printWaiter = "True"; paperWidth = "wide"; topMargin = "1.5";
                                           printGeometry = "true"; };)";
    EXPECT_EQ(findings(request, settings),
              QStringList({u"r.xml: printed line 1: setting zentaro.doc.paperWidth = \"wide\" reads as 0: "
                           "it is not a whole number"_s,
                           u"r.xml: printed line 1: setting zentaro.doc.printTime = \"yes\" reads as false: "
                           "a switch is on only for \"true\""_s,
                           u"r.xml: printed line 1: setting zentaro.doc.printWaiter = \"True\" reads as false: "
                           "a switch is on only for \"true\""_s}));

    const QByteArray withGeometry = "<r><method name=\"printPartialOrder\"/><geometry/>"
                                    "<receipe number=\"1\" name=\"Pizza\"/></r>";
    EXPECT_EQ(findings(withGeometry, settings).last().toStdString(),
              "r.xml: printed line 1: setting zentaro.doc.topMargin = \"1.5\" reads as 0: it is not a whole number");
}

TEST(RequestCheck, FindsCharactersTheCodePageLacks)
{
    const QByteArray request = "<r><method name=\"printPartialOrder\"/>"
                               "<receipe number=\"1\" name=\"Caff\xc3\xa8 \xe2\x82\xac\"/>"
                               "<receipe number=\"2\" name=\"Pizza\"/></r>";
    const auto configuration = ZTConfiguration::fromText(
        R"(zentaro : { doc : { quantityFieldWidth = 3; paperWidth = 32; codePage = "US-ASCII"; }; };)");
    PreviewSettings settings;
    settings.configuration = configuration.get();
    const Paper paper = previewInput(request, u"r.xml"_s, settings);
    EXPECT_EQ(findingLines(paper),
              QStringList({u"r.xml: printed line 1: \"\u00e8\" is not in code page US-ASCII: printed as \"e\""_s,
                           u"r.xml: printed line 1: \"\u20ac\" is not in code page US-ASCII: printed as \"EUR\""_s}));
    // The line shows what will print, the replacements marked.
    const Row& row = paper.sections[0].rows[0];
    EXPECT_EQ(row.text.trimmed(), u"1 Caffe EUR"_s);
    ASSERT_EQ(row.marks.size(), 2u);
    EXPECT_EQ(row.text.mid(row.marks[1].start, row.marks[1].length), u"EUR"_s);
}

TEST(RequestCheck, ReportsWhatThePrintRunReports)
{
    const QByteArray request = "<r>\n<method name=\"printPartialOrder\"/>\n<receipe number=\"1\" name=\"Pizza\"/>\n</r>";
    EXPECT_EQ(findings(request, R"(doc : { codePage = "CP999"; };)"),
              QStringList({u"r.xml: printed line 1: the print run reports: Unknown code page \"CP999\" in "
                           "zentaro.doc.codePage: the print file is written in UTF-8 (request line 2, column 1)"_s}));
}

TEST(RequestCheck, PaperWidthCanBeOverridden)
{
    const QByteArray request = "<r><method name=\"printPartialOrder\"/><receipe number=\"1\" name=\"Pizza\"/></r>";
    const auto configuration = ZTConfiguration::fromText("zentaro : {" + baseSettings + "};");
    PreviewSettings settings;
    settings.configuration = configuration.get();
    settings.width = 24;
    const Paper paper = previewInput(request, u"r.xml"_s, settings);
    ASSERT_EQ(paper.sections.size(), 1u);
    EXPECT_EQ(paper.sections[0].paperWidth, 24);
    // The line is laid out on the configured 32 columns: 30 characters.
    EXPECT_EQ(findingLines(paper),
              QStringList({u"r.xml: printed line 1: wider than the paper: 30 characters on paper 24 wide"_s}));
}

} // namespace

#pragma once

#include <QByteArray>
#include <QLatin1StringView>
#include <QString>

#include <span>
#include <vector>

struct DocumentType;
class ZTConfiguration;

// The paper width of a document whose settings name none: the receipt
// printer's 32 columns.
inline constexpr int defaultPaperWidth = 32;

// The language a document's printer speaks: the receipt printer's command
// text, or the thermal printers' ESC/POS.
enum class Dialect { CommandText, EscPos };
inline constexpr Dialect defaultDialect = Dialect::CommandText;
// An 80 mm head at 203 dpi; a 58 mm one has 384 dots.
inline constexpr int defaultDotsPerLine = 576;
// Lines fed before the cut, so that the last line clears the knife.
inline constexpr int defaultCutFeed = 4;

// Settings of one document type, read from "<prefix><key word>" keys; each
// field bears the name of the key word that fills it.
struct DocumentSettings
{
    int quantityFieldWidth = 0;
    int priceFieldWidth = 0;
    int totalPriceFieldWidth = 0;
    int paperWidth = 0;
    int paperRows = 0;
    QString style; // free text: read with the others, used by no document

    bool printGeometry = false;
    bool printHeader = false;
    bool printLogo = false;
    bool printCompany = false;
    bool printDeliveryAddress = false;
    bool printTelephone = false;
    bool printDate = false;
    bool printTime = false;
    bool printTable = false;
    bool printCustomer = false;
    bool printBillingAddress = false;
    bool printLicenseNumber = false;
    bool printFiscalCode = false;
    bool printCredit = false;
    bool printWaiter = false;
    bool printNote = false;
    bool openCashDrawer = false;

    // Every double quote inside printed text is printed as an apostrophe,
    // so that text never ends the printer's line (or a fiscal field) early.
    bool safeText = false;
    // The printer's character set ("CP858", ...); empty: the locale's.
    QByteArray codePage;
    // How much of an item's name the fiscal printer takes; read for fiscal
    // documents only, the paper width of the device when none is set.
    int descriptionWidth = 0;

    Dialect dialect = defaultDialect;
    // The text of a dialect key word that names no dialect; empty when it
    // names one or is not set.
    QString unknownDialect;
    // The printer's number of its code page, overriding the usual one;
    // -1: the usual one.
    int codePageNumber = -1;
    // A PNG file printed where the request places its logo.
    QString logo;
    int dotsPerLine = defaultDotsPerLine;
    int cutFeed = defaultCutFeed;
};

// A per-document switch (printDate, printCustomer, ...).
using Switch = bool DocumentSettings::*;

struct SwitchKey
{
    QLatin1StringView keyWord;
    Switch member;
};
// The switches, in the order they are read.
std::span<const SwitchKey> switchKeys();

// The key words of a document's settings, besides its switches.
namespace SettingKey {
inline constexpr QLatin1StringView quantityFieldWidth("quantityFieldWidth");
inline constexpr QLatin1StringView priceFieldWidth("priceFieldWidth");
inline constexpr QLatin1StringView totalPriceFieldWidth("totalPriceFieldWidth");
inline constexpr QLatin1StringView paperWidth("paperWidth");
inline constexpr QLatin1StringView paperRows("paperRows");
inline constexpr QLatin1StringView style("style");
inline constexpr QLatin1StringView safeText("safeText");
inline constexpr QLatin1StringView codePage("codePage");
inline constexpr QLatin1StringView descriptionWidth("descriptionWidth");
inline constexpr QLatin1StringView dialect("dialect");
inline constexpr QLatin1StringView codePageNumber("codePageNumber");
inline constexpr QLatin1StringView logo("logo");
inline constexpr QLatin1StringView dotsPerLine("dotsPerLine");
inline constexpr QLatin1StringView cutFeed("cutFeed");
// The blank lines above a document, read where they are printed.
inline constexpr QLatin1StringView topMargin("topMargin");
} // namespace SettingKey

// What the print run makes of a setting's text, which tools check a new
// value against before they write it.
enum class SettingKind {
    Text,     // any text
    Number,   // a whole number: field widths, margins, copies
    Switch,   // "true" or "false"
    CodePage, // the name of a character set the print run knows
};

// The kind of a document's setting by its key word, the last field of its
// key; free text for any word that is no setting of a document.
SettingKind settingKind(QStringView keyWord);

// A setting whose text read as 0 or false although it was neither empty nor
// "false": "yes" for a switch, "wide" for a width.
struct MisreadSetting
{
    QString key;
    QString text;
    bool isSwitch; // read as false; otherwise a number read as 0
};

// Notes each misread setting once, in the order read: settings are read
// again for every document of a type.
class MisreadSettings
{
public:
    void note(const QString& key, const QString& text, bool isSwitch);
    const std::vector<MisreadSetting>& all() const { return notes; }

private:
    std::vector<MisreadSetting> notes;
};

// Reads a whole number the way the documents do: empty or malformed text is
// 0 (and noted in `misread`, if given, unless empty), and a width far beyond
// any paper is bounded so that no line grows to the size of memory.
int readWidthSetting(const ZTConfiguration& configuration, const QString& key,
                     MisreadSettings* misread = nullptr);

// The settings of one document type; the fiscal type's also hold its
// description width.
DocumentSettings readDocumentSettings(const ZTConfiguration& configuration, const DocumentType& type,
                                      MisreadSettings* misread = nullptr);

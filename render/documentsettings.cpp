#include "documentsettings.h"

#include "documenttypes.h"
#include "ztconfiguration.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// What the settings that are no switches take; any other is free text.
constexpr std::pair<QLatin1StringView, SettingKind> kinds[] = {
    {SettingKey::quantityFieldWidth, SettingKind::Number},
    {SettingKey::priceFieldWidth, SettingKind::Number},
    {SettingKey::totalPriceFieldWidth, SettingKind::Number},
    {SettingKey::paperWidth, SettingKind::Number},
    {SettingKey::paperRows, SettingKind::Number},
    {SettingKey::topMargin, SettingKind::Number},
    {SettingKey::descriptionWidth, SettingKind::Number},
    {SettingKey::codePageNumber, SettingKind::Number},
    {SettingKey::dotsPerLine, SettingKind::Number},
    {SettingKey::cutFeed, SettingKind::Number},
    {DocumentType::copyNumberKeyWord, SettingKind::Number},
    {SettingKey::safeText, SettingKind::Switch},
    {SettingKey::codePage, SettingKind::CodePage},
};

constexpr SwitchKey switches[] = {
    {"printGeometry"_L1, &DocumentSettings::printGeometry},
    {"printHeader"_L1, &DocumentSettings::printHeader},
    {"printLogo"_L1, &DocumentSettings::printLogo},
    {"printCompany"_L1, &DocumentSettings::printCompany},
    {"printDeliveryAddress"_L1, &DocumentSettings::printDeliveryAddress},
    {"printBillingAddress"_L1, &DocumentSettings::printBillingAddress},
    {"printTelephone"_L1, &DocumentSettings::printTelephone},
    {"printDate"_L1, &DocumentSettings::printDate},
    {"printTime"_L1, &DocumentSettings::printTime},
    {"printTable"_L1, &DocumentSettings::printTable},
    {"printCustomer"_L1, &DocumentSettings::printCustomer},
    {"printLicenseNumber"_L1, &DocumentSettings::printLicenseNumber},
    {"printFiscalCode"_L1, &DocumentSettings::printFiscalCode},
    {"printCredit"_L1, &DocumentSettings::printCredit},
    {"printWaiter"_L1, &DocumentSettings::printWaiter},
    {"printNote"_L1, &DocumentSettings::printNote},
    {"openCashDrawer"_L1, &DocumentSettings::openCashDrawer},
};

// Kept as the setting says within the bound, negative widths included.
int boundedWidth(int width)
{
    constexpr int widestLine = 4096;
    return std::clamp(width, -widestLine, widestLine);
}

// Reads the settings of one prefix; all the keys share it, so one buffer
// serves them all: only the key word after the prefix changes.
class SettingsReader
{
public:
    SettingsReader(const ZTConfiguration& configuration, QLatin1StringView prefix, MisreadSettings* misread)
        : configuration(configuration), prefixLength(prefix.size()), misread(misread)
    {
        key.reserve(prefix.size() + 32);
        key.append(prefix);
    }

    QString text(QLatin1StringView keyWord)
    {
        key.truncate(prefixLength);
        key.append(keyWord);
        return configuration.getStrValue(key);
    }
    // Empty or malformed text reads as 0, as toInt reports it.
    int number(QLatin1StringView keyWord)
    {
        const QString value = text(keyWord);
        bool isNumber = false;
        const int read = value.toInt(&isNumber);
        if (!isNumber && !value.isEmpty() && misread)
            misread->note(key, value, false);
        return read;
    }
    int width(QLatin1StringView keyWord) { return boundedWidth(number(keyWord)); }
    // A switch is on only for "true".
    bool flag(QLatin1StringView keyWord)
    {
        const QString value = text(keyWord);
        if (value == "true"_L1)
            return true;
        if (!value.isEmpty() && value != "false"_L1 && misread)
            misread->note(key, value, true);
        return false;
    }

private:
    const ZTConfiguration& configuration;
    QString key;
    qsizetype prefixLength;
    MisreadSettings* misread;
};

// The printer's dialect and what only ESC/POS printers read.
void readDeviceSettings(SettingsReader& read, DocumentSettings& settings)
{
    const QString dialect = read.text(SettingKey::dialect).trimmed();
    if (dialect == "escpos"_L1)
        settings.dialect = Dialect::EscPos;
    else if (dialect == "command-text"_L1)
        settings.dialect = Dialect::CommandText;
    else if (!dialect.isEmpty())
        settings.unknownDialect = dialect;
    // A number the printer cannot take (a byte) is no override.
    if (!read.text(SettingKey::codePageNumber).isEmpty()) {
        const int number = read.number(SettingKey::codePageNumber);
        settings.codePageNumber = number >= 0 && number <= 255 ? number : -1;
    }
    settings.logo = read.text(SettingKey::logo).trimmed();
    if (const int dots = read.width(SettingKey::dotsPerLine); dots > 0)
        settings.dotsPerLine = dots;
    if (!read.text(SettingKey::cutFeed).isEmpty())
        settings.cutFeed = std::clamp(read.number(SettingKey::cutFeed), 0, 255);
}

} // namespace

std::span<const SwitchKey> switchKeys()
{
    return switches;
}

SettingKind settingKind(QStringView keyWord)
{
    for (const SwitchKey& key : switches) {
        if (keyWord == key.keyWord)
            return SettingKind::Switch;
    }
    for (const auto& [known, kind] : kinds) {
        if (keyWord == known)
            return kind;
    }
    return SettingKind::Text;
}

void MisreadSettings::note(const QString& key, const QString& text, bool isSwitch)
{
    const bool known = std::any_of(notes.begin(), notes.end(),
                                   [&key](const MisreadSetting& noted) { return noted.key == key; });
    if (!known)
        notes.push_back({key, text, isSwitch});
}

int readWidthSetting(const ZTConfiguration& configuration, const QString& key, MisreadSettings* misread)
{
    const QString text = configuration.getStrValue(key);
    bool number = false;
    const int value = text.toInt(&number);
    if (!number && !text.isEmpty() && misread)
        misread->note(key, text, false);
    return boundedWidth(value);
}

DocumentSettings readDocumentSettings(const ZTConfiguration& configuration, const DocumentType& type,
                                      MisreadSettings* misread)
{
    SettingsReader read(configuration, type.prefix, misread);
    DocumentSettings settings;
    settings.quantityFieldWidth = read.width(SettingKey::quantityFieldWidth);
    settings.priceFieldWidth = read.width(SettingKey::priceFieldWidth);
    settings.totalPriceFieldWidth = read.width(SettingKey::totalPriceFieldWidth);
    settings.paperWidth = read.width(SettingKey::paperWidth);
    settings.paperRows = read.number(SettingKey::paperRows);
    if (settings.paperWidth == 0)
        settings.paperWidth = defaultPaperWidth;
    settings.style = read.text(SettingKey::style);
    for (const SwitchKey& key : switches)
        settings.*key.member = read.flag(key.keyWord);
    settings.safeText = read.flag(SettingKey::safeText);
    settings.codePage = read.text(SettingKey::codePage).trimmed().toLatin1();
    readDeviceSettings(read, settings);
    if (&type == &DocumentTypes::fiscal) {
        settings.descriptionWidth = read.width(SettingKey::descriptionWidth);
        if (settings.descriptionWidth == 0)
            settings.descriptionWidth = defaultPaperWidth;
    }
    return settings;
}

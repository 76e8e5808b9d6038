#include "settingkind.h"

#include <algorithm>
#include <array>

namespace libconfig {

namespace {

constexpr std::array<QStringView, 11> numberKeys{
    u"quantityFieldWidth", u"priceFieldWidth", u"totalPriceFieldWidth", u"descriptionWidth",
    u"paperWidth",         u"paperRows",       u"topMargin",            u"dotsPerLine",
    u"cutFeed",            u"codePageNumber",  u"copyNumber",
};

constexpr std::array<QStringView, 2> switchKeys{u"openCashDrawer", u"safeText"};

} // namespace

SettingKind settingKind(QStringView keyWord)
{
    if ((keyWord.startsWith(u"print") && keyWord.size() > 5 && keyWord[5].isUpper())
        || std::ranges::find(switchKeys, keyWord) != switchKeys.end())
        return SettingKind::Switch;
    if (std::ranges::find(numberKeys, keyWord) != numberKeys.end())
        return SettingKind::Number;
    if (keyWord == u"codePage")
        return SettingKind::CodePage;
    return SettingKind::Text;
}

} // namespace libconfig

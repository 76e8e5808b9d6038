#pragma once

#include <QStringView>

namespace libconfig {

// What the print run makes of a setting's text, which tools check a new
// value against before they write it.
enum class SettingKind {
    Text,     // any text
    Number,   // a whole number: field widths, margins, copies
    Switch,   // "true" or "false"
    CodePage, // the name of a character set the print run knows
};

// The kind of a setting by its name, the last field of its key: a name
// of "print" and a capital (printLogo) is a switch (printLicenseNumber too), as are
// openCashDrawer and safeText.
SettingKind settingKind(QStringView keyWord);

} // namespace libconfig

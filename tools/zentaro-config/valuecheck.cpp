#include "valuecheck.h"

#include "codepage.h"
#include "documentsettings.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

QString valueProblem(const QString& key, const QString& value)
{
    const QStringView keyWord = QStringView(key).sliced(key.lastIndexOf(u'.') + 1);
    switch (settingKind(keyWord)) {
    case SettingKind::Number: {
        static const QRegularExpression digits(u"^[0-9]+$"_s);
        bool fits = false;
        value.toInt(&fits);
        if (!digits.match(value).hasMatch() || !fits)
            return u"%1 takes a whole number, not \"%2\""_s.arg(keyWord, value);
        break;
    }
    case SettingKind::Switch:
        if (value != "true"_L1 && value != "false"_L1)
            return u"%1 takes true or false, not \"%2\""_s.arg(keyWord, value);
        break;
    case SettingKind::CodePage:
        if (!CodePage(value.toLatin1()).isValid())
            return u"%1 takes a code page the print run knows (such as CP437, CP858, ISO-8859-15), not \"%2\""_s.arg(
                keyWord, value);
        break;
    case SettingKind::Text:
        break;
    }
    return {};
}

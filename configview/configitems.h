#pragma once

#include <QRegularExpression>
#include <QString>
#include <QTreeWidgetItem>

#include <optional>
#include <utility>

namespace libconfig {

// How the one-column tree view shows a configuration tree:
//
//   the file element   a top-level item showing the file's path (not editable)
//   a group            an item showing the group's name, below its parent's item
//   a setting          an item showing "name = value", below its group's item,
//                      before the group's own groups, in the order of the file
//
// What an item saves follows from its text alone: a text holding " = " is a
// setting (the name is what stands before the first " = ", the value all
// after it; no name read from a file can hold "="), any other text is a
// group of that name. So an item made with the plain QTreeWidgetItem API,
// such as new QTreeWidgetItem(group, {"size = 10"}), or a copy made with
// clone(), saves as it shows.

inline constexpr QLatin1StringView settingSeparator{" = "};

// Under this role a setting's item answers the setting's name; other items
// answer nothing. It lets a delegate tell settings from groups.
inline constexpr int settingNameRole = Qt::UserRole + 1;

// The name and value an item's text shows, or nothing for a group's item.
std::optional<std::pair<QString, QString>> settingShownBy(const QTreeWidgetItem* item);

// Whether saving writes what the item shows. The writers write only the
// first group of a file, so a later top-level group and what it holds are
// shown greyed, with a tool tip saying why.
bool isWritten(const QTreeWidgetItem* item);

// The item of a group or of the file element.
class ElementItem : public QTreeWidgetItem
{
public:
    static constexpr int itemType = QTreeWidgetItem::UserType + 1;

    explicit ElementItem(const QString& name, int type = itemType);

    QVariant data(int column, int role) const override;
};

// The item of a setting: it shows "name = value" and edits only the value
// in place; a name is chosen when the setting is added.
class SettingItem : public ElementItem
{
public:
    static constexpr int itemType = QTreeWidgetItem::UserType + 2;

    SettingItem(const QString& name, const QString& value);

    const QString& name() const { return m_name; }
    const QString& value() const { return m_value; }

    QVariant data(int column, int role) const override;
    void setData(int column, int role, const QVariant& value) override;

private:
    QString m_name;
    QString m_value;
};

// A new group's item, after everything else in `parent`.
ElementItem* addGroupItem(QTreeWidgetItem* parent, const QString& name);
// A new setting's item, after the last setting of `parent` and before its
// groups, where saving and reading back would put it.
SettingItem* addSettingItem(QTreeWidgetItem* parent, const QString& name, const QString& value);

// What a name or a value may hold so that a file of the format ("cfg" or
// "xml") reads back what was written. "cfg": a name without ':', '=' or '}'
// and without blanks at its ends, a value without '"' or ';'. "xml": a name
// of letters, digits and "_.:-" that starts with a letter or '_', a value
// without '"', '<' or '&' (the writer does not escape). Not anchored.
QRegularExpression namePattern(QStringView fileType);
QRegularExpression valuePattern(QStringView fileType);

} // namespace libconfig

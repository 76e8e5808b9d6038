#include "configitems.h"

#include <QGuiApplication>
#include <QPalette>
#include <QTreeWidget>

namespace libconfig {

using namespace Qt::StringLiterals;

std::optional<std::pair<QString, QString>> settingShownBy(const QTreeWidgetItem* item)
{
    const QString text = item->text(0);
    const qsizetype separator = text.indexOf(settingSeparator);
    if (separator < 0)
        return std::nullopt;
    return std::pair{text.left(separator), text.mid(separator + settingSeparator.size())};
}

namespace {

const QTreeWidgetItem* firstGroupItem(const QTreeWidgetItem* parent)
{
    for (int i = 0; i < parent->childCount(); ++i)
        if (!settingShownBy(parent->child(i)))
            return parent->child(i);
    return nullptr;
}

} // namespace

bool isWritten(const QTreeWidgetItem* item)
{
    // Climb to the top-level item, keeping the item just below it.
    const QTreeWidgetItem* top = item;
    const QTreeWidgetItem* belowTop = nullptr;
    while (top->parent()) {
        belowTop = top;
        top = top->parent();
    }
    // Only the document's first element is written.
    if (const QTreeWidget* view = top->treeWidget(); view && view->topLevelItem(0) != top)
        return false;
    // The file element and its own settings are written; of its groups,
    // only the first.
    if (!belowTop || settingShownBy(belowTop))
        return true;
    return belowTop == firstGroupItem(top);
}

ElementItem::ElementItem(const QString& name, int type)
    : QTreeWidgetItem(QStringList{name}, type)
{
    setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable);
}

QVariant ElementItem::data(int column, int role) const
{
    if ((role == Qt::ForegroundRole || role == Qt::ToolTipRole) && !isWritten(this)) {
        if (role == Qt::ToolTipRole)
            return u"Not saved: a file keeps only its first group"_s;
        return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
    }
    return QTreeWidgetItem::data(column, role);
}

SettingItem::SettingItem(const QString& name, const QString& value)
    : ElementItem(QString(), itemType)
    , m_name(name)
    , m_value(value)
{
}

QVariant SettingItem::data(int column, int role) const
{
    if (column == 0) {
        switch (role) {
        case Qt::DisplayRole:
            return QString(m_name + settingSeparator + m_value);
        case Qt::EditRole:
            return m_value;
        case settingNameRole:
            return m_name;
        default:
            break;
        }
    }
    return ElementItem::data(column, role);
}

void SettingItem::setData(int column, int role, const QVariant& value)
{
    if (column != 0 || (role != Qt::EditRole && role != Qt::DisplayRole)) {
        ElementItem::setData(column, role, value);
        return;
    }
    const QString text = value.toString();
    if (role == Qt::EditRole) {
        m_value = text;
    } else if (const qsizetype separator = text.indexOf(settingSeparator); separator >= 0) {
        // A whole "name = value" text, as setText gives it.
        m_name = text.left(separator);
        m_value = text.mid(separator + settingSeparator.size());
    } else {
        m_name = text;
        m_value.clear();
    }
    emitDataChanged();
}

ElementItem* addGroupItem(QTreeWidgetItem* parent, const QString& name)
{
    auto* item = new ElementItem(name);
    parent->addChild(item);
    return item;
}

SettingItem* addSettingItem(QTreeWidgetItem* parent, const QString& name, const QString& value)
{
    int at = 0;
    while (at < parent->childCount() && settingShownBy(parent->child(at)))
        ++at;
    auto* item = new SettingItem(name, value);
    parent->insertChild(at, item);
    return item;
}

QRegularExpression namePattern(QStringView fileType)
{
    if (fileType == u"xml")
        return QRegularExpression(u"[A-Za-z_][A-Za-z0-9_.:-]*"_s);
    // The reader trims blanks, tabs, line ends and the no-break space.
    return QRegularExpression(u"[^\\s\\x{a0}:=}](?:[^:=}]*[^\\s\\x{a0}:=}])?"_s);
}

QRegularExpression valuePattern(QStringView fileType)
{
    return QRegularExpression(fileType == u"xml" ? u"[^\"<&]*"_s : u"[^\";]*"_s);
}

} // namespace libconfig

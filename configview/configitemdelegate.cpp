#include "configitemdelegate.h"

#include "configitems.h"

#include <QLineEdit>
#include <QRegularExpressionValidator>

namespace libconfig {

ConfigItemDelegate::ConfigItemDelegate(const QString& fileType, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_fileType(fileType)
{
}

QWidget* ConfigItemDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                          const QModelIndex& index) const
{
    QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        const bool isSetting = index.data(settingNameRole).isValid();
        const QRegularExpression pattern = isSetting ? valuePattern(m_fileType) : namePattern(m_fileType);
        line->setValidator(new QRegularExpressionValidator(pattern, line));
    }
    return editor;
}

void ConfigItemDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    // The editor closes either way; an unacceptable text leaves the item as it was.
    if (auto* line = qobject_cast<QLineEdit*>(editor); line && !line->hasAcceptableInput())
        return;
    QStyledItemDelegate::setModelData(editor, model, index);
}

// A value's editor opens after the "name = " it belongs to, which stays in
// sight while the value is typed.
void ConfigItemDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                              const QModelIndex& index) const
{
    QStyledItemDelegate::updateEditorGeometry(editor, option, index);
    const QVariant name = index.data(settingNameRole);
    if (!name.isValid())
        return;
    const int shownNameWidth = option.fontMetrics.horizontalAdvance(name.toString() + settingSeparator);
    QRect area = editor->geometry();
    area.setLeft(qMin(area.left() + shownNameWidth, area.right() - option.fontMetrics.averageCharWidth() * 8));
    editor->setGeometry(area);
}

} // namespace libconfig

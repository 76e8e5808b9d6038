#pragma once

#include <QString>
#include <QStyledItemDelegate>

namespace libconfig {

// Edits an item of the configuration view in place: a setting's value, or
// a group's name. The line editor takes only text that a file of the format
// reads back as written, and a name left empty or incomplete is not taken.
class ConfigItemDelegate : public QStyledItemDelegate
{
public:
    ConfigItemDelegate(const QString& fileType, QObject* parent);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

private:
    QString m_fileType;
};

} // namespace libconfig

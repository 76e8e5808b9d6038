#pragma once

#include "ztconfiguration.h"

#include <QMainWindow>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class QAction;
class QTreeWidget;
class QTreeWidgetItem;

// A setting as the view shows it, with its dotted key.
struct ShownSetting
{
    QString key;
    QString value;
};

// The editor: the configuration's tree view with actions to add and remove
// groups and settings, to save the file in its own format and to quit.
// Quitting with unsaved changes asks first.
class EditorWindow : public QMainWindow
{
public:
    EditorWindow(std::unique_ptr<ZTConfiguration> configuration, const QString& path, const QString& format);

    bool save();
    // For a picture of the window: small groups open, the first setting of
    // the last of them in its in-place editor.
    void showExample();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createActions();
    void addGroup();
    void addSetting();
    void removeCurrent();
    void updateActions();

    // The group or file item that new members go to, after the current item.
    QTreeWidgetItem* targetElement() const;
    bool canAddGroupTo(const QTreeWidgetItem* element) const;
    bool canAddSettingTo(const QTreeWidgetItem* element) const;
    // The file's text with the changed settings set in it, or nothing when
    // that text would not read as the view shows.
    std::optional<QByteArray> editedText(const std::vector<ShownSetting>& changed) const;
    // A name that a file of this format can hold, or empty when cancelled.
    QString askName(const QString& title, const QString& label);

    std::unique_ptr<ZTConfiguration> m_configuration;
    QString m_path;
    QString m_format;
    QTreeWidget* m_view = nullptr;
    QAction* m_addGroup = nullptr;
    QAction* m_addSetting = nullptr;
    QAction* m_remove = nullptr;
    // The settings shown when the file was last read or saved.
    std::vector<ShownSetting> m_savedSettings;
};

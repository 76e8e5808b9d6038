#include "editorwindow.h"

#include "cfgedit.h"
#include "configitems.h"
#include "treewalk.h"
#include "valuecheck.h"

#include <QAction>
#include <QCloseEvent>
#include <QFile>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpressionValidator>
#include <QStatusBar>
#include <QToolBar>
#include <QTreeWidget>

#include <map>

using namespace Qt::StringLiterals;
using libconfig::settingShownBy;

namespace {

bool isSetting(const QTreeWidgetItem* item)
{
    return item && settingShownBy(item).has_value();
}

QTreeWidgetItem* findSetting(QTreeWidgetItem* element, const QString& name)
{
    for (int i = 0; i < element->childCount(); ++i) {
        const auto setting = settingShownBy(element->child(i));
        if (setting && setting->first == name)
            return element->child(i);
    }
    return nullptr;
}

bool holdsGroup(const QTreeWidgetItem* element)
{
    for (int i = 0; i < element->childCount(); ++i)
        if (!isSetting(element->child(i)))
            return true;
    return false;
}

// The settings that saving writes, with their dotted keys: those of the
// file's first group and of the groups in it.
std::vector<ShownSetting> shownSettings(const QTreeWidget* view)
{
    std::vector<ShownSetting> shown;
    const QTreeWidgetItem* file = view->topLevelItem(0);
    const QTreeWidgetItem* top = nullptr;
    for (int i = 0; file && !top && i < file->childCount(); ++i)
        if (!isSetting(file->child(i)))
            top = file->child(i);
    QStringList path;
    libconfig::walkTree(
        top,
        [](const QTreeWidgetItem* item, std::size_t i) {
            return int(i) < item->childCount() ? item->child(int(i)) : nullptr;
        },
        [&](const QTreeWidgetItem* item, std::size_t) {
            if (const auto setting = settingShownBy(item)) {
                shown.push_back({path.join(u'.') + u'.' + setting->first, setting->second});
                return false;
            }
            path << item->text(0);
            return true;
        },
        [&path](const QTreeWidgetItem*, std::size_t) { path.removeLast(); });
    return shown;
}

} // namespace

EditorWindow::EditorWindow(std::unique_ptr<ZTConfiguration> configuration, const QString& path,
                           const QString& format)
    : m_configuration(std::move(configuration))
    , m_path(path)
    , m_format(format)
    , m_view(m_configuration->newConfigListView())
{
    setWindowTitle(u"%1[*] \u2014 zentaro-config"_s.arg(path));
    setCentralWidget(m_view);
    createActions();
    statusBar()->showMessage(u"Double-click a setting to change its value. Greyed groups are not saved."_s);
    resize(640, 560);

    // An empty file shows its file item all the same, so that a first
    // group can be added.
    if (m_view->topLevelItemCount() == 0) {
        auto* file = new libconfig::ElementItem(path);
        file->setFlags(file->flags() & ~Qt::ItemIsEditable);
        m_view->addTopLevelItem(file);
    }
    m_view->setCurrentItem(m_view->topLevelItem(0));

    QAbstractItemModel* model = m_view->model();
    const auto modified = [this] { setWindowModified(true); };
    connect(model, &QAbstractItemModel::dataChanged, this, modified);
    connect(model, &QAbstractItemModel::rowsInserted, this, modified);
    connect(model, &QAbstractItemModel::rowsRemoved, this, modified);
    connect(m_view, &QTreeWidget::currentItemChanged, this, [this] { updateActions(); });
    updateActions();
    m_savedSettings = shownSettings(m_view);
}

void EditorWindow::createActions()
{
    QMenu* fileMenu = menuBar()->addMenu(u"&File"_s);
    QAction* saveAction = fileMenu->addAction(u"&Save"_s, this, [this] { save(); });
    saveAction->setShortcut(QKeySequence::Save);
    fileMenu->addSeparator();
    QAction* quitAction = fileMenu->addAction(u"&Quit"_s, this, [this] { close(); });
    quitAction->setShortcut(QKeySequence::Quit);

    QMenu* editMenu = menuBar()->addMenu(u"&Edit"_s);
    m_addGroup = editMenu->addAction(u"Add &Group"_s, this, [this] { addGroup(); });
    m_addSetting = editMenu->addAction(u"Add &Setting"_s, this, [this] { addSetting(); });
    m_addSetting->setShortcut(QKeySequence::New);
    m_remove = editMenu->addAction(u"&Remove"_s, this, [this] { removeCurrent(); });
    m_remove->setShortcut(QKeySequence::Delete);

    QToolBar* toolBar = addToolBar(u"Edit"_s);
    toolBar->setMovable(false);
    toolBar->addActions({saveAction, m_addGroup, m_addSetting, m_remove, quitAction});
}

QTreeWidgetItem* EditorWindow::targetElement() const
{
    QTreeWidgetItem* current = m_view->currentItem();
    if (isSetting(current))
        return current->parent();
    return current;
}

// A file holds one top-level group: the writers write no other.
bool EditorWindow::canAddGroupTo(const QTreeWidgetItem* element) const
{
    return element && (element->parent() || !holdsGroup(element));
}

// An XML file element holds nothing but the root element.
bool EditorWindow::canAddSettingTo(const QTreeWidgetItem* element) const
{
    return element && (element->parent() || m_format == "cfg"_L1);
}

void EditorWindow::updateActions()
{
    const QTreeWidgetItem* element = targetElement();
    m_addGroup->setEnabled(canAddGroupTo(element));
    m_addSetting->setEnabled(canAddSettingTo(element));
    const QTreeWidgetItem* current = m_view->currentItem();
    m_remove->setEnabled(current && current->parent());
}

QString EditorWindow::askName(const QString& title, const QString& label)
{
    QInputDialog dialog(this);
    dialog.setWindowTitle(title);
    dialog.setLabelText(label);
    dialog.setInputMode(QInputDialog::TextInput);
    const QRegularExpression pattern = libconfig::namePattern(m_format);
    if (auto* line = dialog.findChild<QLineEdit*>())
        line->setValidator(new QRegularExpressionValidator(pattern, line));
    if (dialog.exec() != QDialog::Accepted)
        return {};
    const QString name = dialog.textValue();
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern.pattern())).match(name).hasMatch()
        ? name
        : QString();
}

void EditorWindow::addGroup()
{
    QTreeWidgetItem* element = targetElement();
    if (!canAddGroupTo(element))
        return;
    const QString name = askName(u"Add Group"_s, u"Name of the new group in %1:"_s.arg(element->text(0)));
    if (name.isEmpty())
        return;
    QTreeWidgetItem* group = libconfig::addGroupItem(element, name);
    element->setExpanded(true);
    m_view->setCurrentItem(group);
}

void EditorWindow::addSetting()
{
    QTreeWidgetItem* element = targetElement();
    if (!canAddSettingTo(element))
        return;
    const QString name = askName(u"Add Setting"_s, u"Name of the new setting in %1:"_s.arg(element->text(0)));
    if (name.isEmpty())
        return;
    // A group has one setting of a name: an existing one is edited instead.
    QTreeWidgetItem* setting = findSetting(element, name);
    if (!setting)
        setting = libconfig::addSettingItem(element, name, QString());
    element->setExpanded(true);
    m_view->setCurrentItem(setting);
    m_view->editItem(setting);
}

void EditorWindow::removeCurrent()
{
    QTreeWidgetItem* current = m_view->currentItem();
    if (current && current->parent())
        delete current;
}

// A value is checked against its key before anything is written. A "cfg"
// file keeps its text: changed and added settings are set in it one by one,
// and the file is rewritten as a whole only when the view holds more than
// that (a removal, a renamed or empty group), which setting cannot give.
bool EditorWindow::save()
{
    // What the view shows beyond what it showed when last saved or loaded:
    // a setting of a group that another group of the same name hides is
    // only changed if its own value is.
    const std::vector<ShownSetting> shown = shownSettings(m_view);
    std::map<std::pair<QString, QString>, int> before;
    for (const ShownSetting& setting : m_savedSettings)
        ++before[{setting.key, setting.value}];
    std::vector<ShownSetting> changed;
    for (const ShownSetting& setting : shown)
        if (--before[{setting.key, setting.value}] < 0)
            changed.push_back(setting);
    for (const ShownSetting& setting : changed) {
        if (const QString problem = valueProblem(setting.key, setting.value); !problem.isEmpty()) {
            QMessageBox::warning(this, u"Save"_s, problem);
            return false;
        }
    }

    std::optional<QByteArray> edited;
    if (m_format == "cfg"_L1)
        edited = editedText(changed);
    QString problem;
    bool written = false;
    if (edited) {
        written = libconfig::replaceFileContents(m_path, *edited, &problem);
        if (written)
            m_configuration->readData(*edited, m_format, m_path);
    } else {
        written = m_configuration->loadListView(m_view);
        problem = u"%1 could not be written."_s.arg(m_path);
    }
    if (!written) {
        QMessageBox::warning(this, u"Save"_s, problem);
        return false;
    }
    m_savedSettings = shown;
    setWindowModified(false);
    statusBar()->showMessage(u"Saved %1"_s.arg(m_path), 5000);
    return true;
}

std::optional<QByteArray> EditorWindow::editedText(const std::vector<ShownSetting>& changed) const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray text = file.readAll();
    QString problem;
    for (const ShownSetting& setting : changed) {
        std::optional<QByteArray> next = libconfig::setCfgSetting(text, setting.key, setting.value, &problem);
        if (!next)
            return std::nullopt;
        text = std::move(*next);
    }
    libconfig::Config edited;
    edited.readData(text, m_format);
    libconfig::Config shown;
    shown.takeListView(m_view);
    if (edited.cfgText() != shown.cfgText())
        return std::nullopt;
    return text;
}

void EditorWindow::closeEvent(QCloseEvent* event)
{
    if (!isWindowModified()) {
        event->accept();
        return;
    }
    const auto answer = QMessageBox::question(this, u"Quit"_s,
                                              u"%1 has changes that are not saved. Save them?"_s.arg(m_path),
                                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                              QMessageBox::Save);
    if (answer == QMessageBox::Discard || (answer == QMessageBox::Save && save()))
        event->accept();
    else
        event->ignore();
}

void EditorWindow::showExample()
{
    QTreeWidgetItem* file = m_view->topLevelItem(0);
    QTreeWidgetItem* top = nullptr;
    for (int i = 0; file && !top && i < file->childCount(); ++i)
        if (!isSetting(file->child(i)))
            top = file->child(i);
    if (!top)
        return;
    QTreeWidgetItem* shown = nullptr;
    for (int i = 0; i < top->childCount(); ++i) {
        QTreeWidgetItem* group = top->child(i);
        if (isSetting(group) || group->childCount() > 8)
            continue;
        group->setExpanded(true);
        shown = group->child(0);
    }
    if (!shown)
        return;
    m_view->setCurrentItem(shown);
    m_view->editItem(shown);
}

// The tree views of the configuration store: a tree shown in a one-column
// QTreeWidget, and the tree rebuilt from such a view and saved. The items
// and what they save are described in configitems.h.

#include "config.h"
#include "configitemdelegate.h"
#include "configitems.h"
#include "treewalk.h"
#include "ztconfiguration.h"

#include <QTreeWidget>

#include <vector>

namespace libconfig {

using namespace Qt::StringLiterals;

namespace {

// Items for `top` and everything under it; `placeTop` puts the item of
// `top` where it belongs.
template<class PlaceTop>
void addItemsFor(const ConfigNode* top, PlaceTop placeTop)
{
    std::vector<QTreeWidgetItem*> open;
    walkTree(
        top,
        [](const ConfigNode* node, std::size_t i) {
            return i < node->children().size() ? node->children()[i].get() : nullptr;
        },
        [&](const ConfigNode* element, std::size_t depth) {
            QTreeWidgetItem* item = depth == 0 ? placeTop(element->tagName())
                                               : addGroupItem(open.back(), element->tagName());
            for (const auto& [name, value] : element->attributes())
                addSettingItem(item, name, value);
            open.push_back(item);
            return true;
        },
        [&open](const ConfigNode*, std::size_t) { open.pop_back(); });
}

const QTreeWidgetItem* childItemAt(const QTreeWidgetItem* item, std::size_t i)
{
    return int(i) < item->childCount() ? item->child(int(i)) : nullptr;
}

} // namespace

QTreeWidget* Config::buildConfigListView() const
{
    auto* view = new QTreeWidget;
    view->setColumnCount(1);
    view->setHeaderLabels({u"ConfigurationFile"_s});
    view->setItemDelegate(new ConfigItemDelegate(fileType, view));
    if (documentRoot) {
        for (const auto& element : documentRoot->children())
            buildConfigListView(element.get(), view);
    }
    // The file and its top-level group open; each group's settings one
    // click away.
    for (int i = 0; i < view->topLevelItemCount(); ++i) {
        QTreeWidgetItem* file = view->topLevelItem(i);
        file->setExpanded(true);
        for (int j = 0; j < file->childCount(); ++j)
            file->child(j)->setExpanded(true);
    }
    return view;
}

QTreeWidget* Config::newConfigListView() const
{
    return buildConfigListView();
}

void Config::buildConfigListView(const ConfigNode* node, QTreeWidget* view) const
{
    if (!view)
        return;
    addItemsFor(node, [view](const QString& name) {
        // The file element is named after the file and saved to fileName
        // whatever it is called: its name is not for editing.
        auto* item = new ElementItem(name);
        item->setFlags(item->flags() & ~Qt::ItemIsEditable);
        view->addTopLevelItem(item);
        return item;
    });
}

void Config::buildConfigListView(const ConfigNode* node, QTreeWidgetItem* parent) const
{
    if (!parent)
        return;
    addItemsFor(node, [parent](const QString& name) { return addGroupItem(parent, name); });
}

bool Config::loadListView(const QTreeWidget* view)
{
    if (!view)
        return false;
    takeListView(view);
    if (fileType == "cfg"_L1)
        return buildConfigFile();
    if (fileType == "xml"_L1)
        return buildConfigXmlFile();
    return false;
}

void Config::takeListView(const QTreeWidget* view)
{
    documentRoot = std::make_unique<ConfigNode>();
    for (int i = 0; view && i < view->topLevelItemCount(); ++i)
        loadListView(view->topLevelItem(i), documentRoot.get());
}

// A setting's item sets an attribute on the element of its parent item and
// has no members of its own; any other item is an element.
void Config::loadListView(const QTreeWidgetItem* item, ConfigNode* parent) const
{
    if (!item || !parent)
        return;
    std::vector<ConfigNode*> open{parent};
    walkTree(
        item, childItemAt,
        [&open](const QTreeWidgetItem* shown, std::size_t) {
            if (const auto setting = settingShownBy(shown)) {
                open.back()->setAttribute(setting->first, setting->second);
                return false;
            }
            open.push_back(open.back()->appendChild(std::make_unique<ConfigNode>(shown->text(0))));
            return true;
        },
        [&open](const QTreeWidgetItem*, std::size_t) { open.pop_back(); });
}

} // namespace libconfig

QTreeWidget* ZTConfiguration::newConfigListView() const
{
    return Config::newConfigListView();
}

// The tree views on the offscreen platform: what a view shows, editing in
// place, items added and removed through the widget's own API, and what
// saving the view writes.
#include "config.h"
#include "configitems.h"
#include "configtestutil.h"
#include "testsupport.h"
#include "ztconfiguration.h"

#include <QDir>
#include <QHeaderView>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;
using libconfig::Config;
using testsupport::readBytes;

namespace {

const QString writerData = QStringLiteral(CONFIG_TEST_DATA "/writer");

const char workedExample[] = "zentaro : {\n"
                             "    logger : {\n"
                             "        level = \"WARNING\";\n"
                             "        basedir = \"/var/log/pos\";\n"
                             "    };\n"
                             "    language : {\n"
                             "        basedir = \" /usr/share/pos/lang \";\n"
                             "        file = \"de\";\n"
                             "    };\n"
                             "};\n";

// The view as indented lines, four blanks a level.
QString outline(const QTreeWidget& view)
{
    QString out;
    QTreeWidgetItemIterator it(const_cast<QTreeWidget*>(&view));
    for (; *it; ++it) {
        int depth = 0;
        for (const QTreeWidgetItem* up = (*it)->parent(); up; up = up->parent())
            ++depth;
        out += QString(4 * depth, u' ') + (*it)->text(0) + u'\n';
    }
    return out;
}

// Opens the in-place editor on `item`, types `keys` over its text and
// presses Return; the view takes the text once the events are processed.
void editInPlace(QTreeWidget& view, QTreeWidgetItem* item, const QString& keys)
{
    view.editItem(item);
    auto* editor = view.viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->clear();
    QTest::keyClicks(editor, keys);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// A configuration file in a scratch folder, loaded, with its view.
class ViewTest : public testing::Test
{
protected:
    void load(const QByteArray& text, const QString& format = u"cfg"_s)
    {
        ASSERT_TRUE(scratch.isValid());
        path = scratch.filePath(format == "xml"_L1 ? u"zentaro.xml"_s : u"zentaro.conf"_s);
        ASSERT_TRUE(testsupport::writeBytes(path, text.toStdString()));
        config = std::make_unique<Config>(path, format);
        view.reset(config->buildConfigListView());
        view->show();
    }

    QTreeWidgetItem* item(const QString& text)
    {
        const QList<QTreeWidgetItem*> found = view->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
        EXPECT_FALSE(found.isEmpty()) << text.toStdString();
        return found.value(0);
    }

    QTemporaryDir scratch;
    QString path;
    std::unique_ptr<Config> config;
    std::unique_ptr<QTreeWidget> view;
};

TEST_F(ViewTest, ShowsElementsByNameAndSettingsAsNameEqualsValue)
{
    load(workedExample);

    EXPECT_EQ(view->columnCount(), 1);
    EXPECT_EQ(view->headerItem()->text(0), u"ConfigurationFile"_s);
    EXPECT_EQ(outline(*view), path + "\n"
                                     "    zentaro\n"
                                     "        logger\n"
                                     "            level = WARNING\n"
                                     "            basedir = /var/log/pos\n"
                                     "        language\n"
                                     "            basedir =  /usr/share/pos/lang \n"
                                     "            file = de\n"_L1);
    EXPECT_FALSE(view->topLevelItem(0)->flags() & Qt::ItemIsEditable) << "the file's name is not for editing";
    EXPECT_TRUE(item(u"logger"_s)->flags() & Qt::ItemIsEditable);
}

TEST_F(ViewTest, ApplicationConfigurationOffersTheSameView)
{
    load(workedExample);
    const std::unique_ptr<QTreeWidget> fromApplication(ZTConfiguration(path).newConfigListView());
    EXPECT_EQ(outline(*fromApplication), outline(*view));
}

// The in-place editors take only what reads back from the file as written.
TEST_F(ViewTest, EditsInPlaceWhatTheFileCanHoldAndSavesIt)
{
    load(workedExample);
    QTreeWidgetItem* level = item(u"level = WARNING"_s);
    QTreeWidgetItem* logger = item(u"logger"_s);
    EXPECT_EQ(level->data(0, Qt::EditRole).toString(), u"WARNING"_s) << "only the value is edited";

    editInPlace(*view, level, u"ER;R\"OR"_s);
    EXPECT_EQ(level->text(0), u"level = ERROR"_s) << "no ';' or quote in a value";
    editInPlace(*view, logger, QString());
    editInPlace(*view, logger, u"log:ger "_s);
    EXPECT_EQ(logger->text(0), u"logger"_s) << "no empty name, no ':' or blank at the end";
    editInPlace(*view, logger, u"journal"_s);

    ASSERT_TRUE(config->loadListView(view.get()));
    EXPECT_EQ(config->lookup(u"zentaro.journal.level"_s), u"ERROR"_s) << "the tree is what the view shows";
    EXPECT_EQ(Config(path, u"cfg"_s).lookup(u"zentaro.journal.level"_s), u"ERROR"_s) << "and so is the file";
}

TEST_F(ViewTest, ItemsAddedAndRemovedThroughTheWidgetApiAreSaved)
{
    load(workedExample);
    new QTreeWidgetItem(item(u"logger"_s), {u"size = 10 MB"_s});
    delete item(u"basedir = /var/log/pos"_s);
    auto* printer = new QTreeWidgetItem(item(u"zentaro"_s), {u"printer"_s});
    new QTreeWidgetItem(printer, {u"port = 9100"_s});
    delete item(u"language"_s);

    ASSERT_TRUE(config->loadListView(view.get()));
    EXPECT_EQ(readBytes(path), "zentaro: \n{\n"
                               "    logger: \n    {\n"
                               "        level = \"WARNING\";\n"
                               "        size = \"10 MB\";\n"
                               "    };\n\n"
                               "    printer: \n    {\n"
                               "        port = \"9100\";\n"
                               "    };\n\n"
                               "};\n\n");
}

TEST_F(ViewTest, AddedSettingStandsBeforeTheGroupsWhereTheFileWillHaveIt)
{
    load("zentaro : { a : { k = 1; }; };");
    QTreeWidgetItem* zentaro = item(u"zentaro"_s);
    libconfig::addGroupItem(zentaro, u"b"_s);
    libconfig::addSettingItem(zentaro, u"version"_s, u"2"_s);

    EXPECT_EQ(outline(*view), path + "\n    zentaro\n        version = 2\n        a\n            k = 1\n        b\n"_L1);
}

TEST_F(ViewTest, LaterTopLevelGroupIsShownAsNotSaved)
{
    load("zentaro : { k = 1; };\nbackup : { k = 2; };");
    QTreeWidgetItem* backup = item(u"backup"_s);
    QTreeWidgetItem* backupSetting = backup->child(0);

    EXPECT_TRUE(libconfig::isWritten(item(u"zentaro"_s)));
    EXPECT_FALSE(libconfig::isWritten(backup));
    EXPECT_FALSE(libconfig::isWritten(backupSetting));
    EXPECT_FALSE(backupSetting->data(0, Qt::ToolTipRole).toString().isEmpty());
    EXPECT_NE(backup->foreground(0), item(u"zentaro"_s)->foreground(0));

    delete item(u"zentaro"_s);
    EXPECT_TRUE(libconfig::isWritten(backup));
    EXPECT_TRUE(backup->data(0, Qt::ToolTipRole).toString().isEmpty());
}

TEST_F(ViewTest, NothingSavedWithoutAViewOrAFormat)
{
    load(workedExample);
    EXPECT_FALSE(config->loadListView(nullptr));

    Config unknownFormat(path, u"ini"_s);
    EXPECT_FALSE(unknownFormat.loadListView(view.get()));
    EXPECT_EQ(readBytes(path), QByteArray(workedExample));
}

// Saved unchanged, a view gives back the tree it was built from, and the
// file the writers would have written.
// The cases are folders of the writers' golden files.
class UnchangedView : public ViewTest, public testing::WithParamInterface<std::string>
{};

TEST_P(UnchangedView, SavesTheTreeItShows)
{
    const QString folder = writerData + u'/' + QString::fromStdString(GetParam());
    const QString format = GetParam().starts_with("xml") ? u"xml"_s : u"cfg"_s;
    load(readBytes(folder + "/input."_L1 + (format == "xml"_L1 ? "xml"_L1 : "conf"_L1)), format);
    const QString before = dumpTree(config->document());

    ASSERT_TRUE(config->loadListView(view.get()));
    EXPECT_EQ(dumpTree(config->document()), before);
    testsupport::expectGoldenFile(folder + "/expected."_L1 + format, readBytes(path));
}

INSTANTIATE_TEST_SUITE_P(Cases, UnchangedView,
                         testing::Values("worked_example", "outside_groups", "duplicate_groups", "empty_values",
                                         "second_top_level", "xml_file"),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });

} // namespace

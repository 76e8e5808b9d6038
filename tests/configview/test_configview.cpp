// The tree views on the offscreen platform: what a view shows, editing in
// place, items added and removed through the widget's own API, and what
// saving the view writes.
#include "config.h"
#include "configitems.h"
#include "configtestutil.h"
#include "testsupport.h"
#include "ztconfiguration.h"

#include <QApplication>
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

QTreeWidgetItem* findItem(QTreeWidget& view, const QString& text)
{
    const QList<QTreeWidgetItem*> found = view.findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? nullptr : found.first();
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
        this->format = format;
        path = scratch.filePath(format == "xml"_L1 ? u"zentaro.xml"_s : u"zentaro.conf"_s);
        ASSERT_TRUE(testsupport::writeBytes(path, text.toStdString()));
        config = std::make_unique<Config>(path, format);
        view.reset(config->buildConfigListView());
        view->show();
    }

    QTreeWidgetItem* item(const QString& text)
    {
        QTreeWidgetItem* found = findItem(*view, text);
        EXPECT_NE(found, nullptr) << text.toStdString();
        return found;
    }

    // What a reader finds in the file after the view was saved.
    QString savedLookup(const QString& key) const { return Config(path, format).lookup(key); }

    QTemporaryDir scratch;
    QString path;
    QString format;
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

TEST_F(ViewTest, ValueIsEditedInPlaceAndSaved)
{
    load(workedExample);
    QTreeWidgetItem* level = item(u"level = WARNING"_s);
    EXPECT_EQ(level->data(0, Qt::EditRole).toString(), u"WARNING"_s) << "only the value is edited";

    // A quote or a ';' would not read back from the file: the editor refuses them.
    editInPlace(*view, level, u"ER;R\"OR"_s);

    EXPECT_EQ(level->text(0), u"level = ERROR"_s);
    ASSERT_TRUE(config->loadListView(view.get()));
    EXPECT_EQ(savedLookup(u"zentaro.logger.level"_s), u"ERROR"_s);
    EXPECT_EQ(config->lookup(u"zentaro.logger.level"_s), u"ERROR"_s) << "the tree is what the view shows";
}

TEST_F(ViewTest, GroupIsRenamedInPlaceToANameTheFileCanHold)
{
    load(workedExample);
    QTreeWidgetItem* logger = item(u"logger"_s);

    editInPlace(*view, logger, QString());
    EXPECT_EQ(logger->text(0), u"logger"_s) << "a group keeps a name";
    editInPlace(*view, logger, u"log:ger "_s);
    EXPECT_EQ(logger->text(0), u"logger"_s) << "':' would end the name in the file, a blank be trimmed";
    editInPlace(*view, logger, u"journal"_s);
    EXPECT_EQ(logger->text(0), u"journal"_s);
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

TEST_F(ViewTest, XmlViewSavesXml)
{
    load("<zentaro><logger level='WARNING'/></zentaro>", u"xml"_s);
    item(u"level = WARNING"_s)->setData(0, Qt::EditRole, u"INFO"_s);

    ASSERT_TRUE(config->loadListView(view.get()));
    EXPECT_EQ(readBytes(path), "\n<zentaro>\n\n    <logger\n        level = \"INFO\">\n    </logger>\n</zentaro>\n");
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

TEST(SettingItem, WholeTextSetsNameAndValue)
{
    libconfig::SettingItem setting(u"k"_s, u"v"_s);
    setting.setText(0, u"name = a = b"_s);
    EXPECT_EQ(setting.name(), u"name"_s);
    EXPECT_EQ(setting.value(), u"a = b"_s);
    EXPECT_EQ(setting.data(0, libconfig::settingNameRole).toString(), u"name"_s);
}

// Saved unchanged, a view gives back the tree it was built from, and the
// file the writers would have written.
struct UnchangedCase {
    const char* name;
    QString format;
};

class UnchangedView : public ViewTest, public testing::WithParamInterface<UnchangedCase>
{};

TEST_P(UnchangedView, SavesTheTreeItShows)
{
    const auto& [name, caseFormat] = GetParam();
    const QString folder = writerData + u'/' + QLatin1StringView(name);
    load(readBytes(folder + (caseFormat == "xml"_L1 ? "/input.xml"_L1 : "/input.conf"_L1)), caseFormat);
    const QString before = dumpTree(config->document());

    ASSERT_TRUE(config->loadListView(view.get()));
    EXPECT_EQ(dumpTree(config->document()), before);
    testsupport::expectGoldenFile(folder + (format == "xml"_L1 ? "/expected.xml"_L1 : "/expected.cfg"_L1),
                                  readBytes(path));
}

INSTANTIATE_TEST_SUITE_P(Cases, UnchangedView,
                         testing::Values(UnchangedCase{"worked_example", u"cfg"_s},
                                         UnchangedCase{"outside_groups", u"cfg"_s},
                                         UnchangedCase{"duplicate_groups", u"cfg"_s},
                                         UnchangedCase{"empty_values", u"cfg"_s},
                                         UnchangedCase{"blanks_in_quotes", u"cfg"_s},
                                         UnchangedCase{"second_top_level", u"cfg"_s},
                                         UnchangedCase{"xml_file", u"xml"_s}),
                         [](const testing::TestParamInfo<UnchangedCase>& info) { return std::string(info.param.name); });

} // namespace

int main(int argc, char** argv)
{
    // The views are built and edited without a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

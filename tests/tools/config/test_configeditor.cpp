// The editor's window on the offscreen platform: saving changes the file as
// "zentaro-config set" does, byte for byte, and refuses a value its key
// cannot hold.
#include "configitems.h"
#include "editorwindow.h"
#include "testsupport.h"
#include "ztconfiguration.h"

#include <QApplication>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Qt::StringLiterals;
using testsupport::readBytes;

namespace {

const QString setData = QStringLiteral(SET_TEST_DATA);

// A file in a scratch folder and the editor's window on it.
class Editor : public testing::Test
{
protected:
    void open(const QByteArray& text)
    {
        ASSERT_TRUE(scratch.isValid());
        path = scratch.filePath(u"zentaro.conf"_s);
        ASSERT_TRUE(testsupport::writeBytes(path, text.toStdString()));
        window = std::make_unique<EditorWindow>(std::make_unique<ZTConfiguration>(path), path, u"cfg"_s);
        view = qobject_cast<QTreeWidget*>(window->centralWidget());
        ASSERT_NE(view, nullptr);
    }

    // Gives a dotted key its value through the view, adding the groups and
    // the setting that are missing as the editor's actions add them.
    void setInView(const QString& key, const QString& value)
    {
        const QStringList fields = key.split(u'.');
        QTreeWidgetItem* element = view->topLevelItem(0);
        for (const QString& name : fields.first(fields.size() - 1)) {
            QTreeWidgetItem* next = nullptr;
            for (int i = 0; !next && i < element->childCount(); ++i)
                if (element->child(i)->text(0) == name)
                    next = element->child(i);
            element = next ? next : libconfig::addGroupItem(element, name);
        }
        for (int i = 0; i < element->childCount(); ++i) {
            const auto setting = libconfig::settingShownBy(element->child(i));
            if (setting && setting->first == fields.last()) {
                element->child(i)->setData(0, Qt::EditRole, value);
                return;
            }
        }
        libconfig::addSettingItem(element, fields.last(), value);
    }

    QTemporaryDir scratch;
    QString path;
    std::unique_ptr<EditorWindow> window;
    QTreeWidget* view = nullptr;
};

class EditorSave : public Editor, public testing::WithParamInterface<std::string>
{};

// The cases of "zentaro-config set", made in the window.
TEST_P(EditorSave, WritesWhatSetWrites)
{
    const QString folder = setData + u'/' + QString::fromStdString(GetParam());
    const QString command = QString::fromLatin1(readBytes(folder + "/command"_L1).trimmed());
    const qsizetype blank = command.indexOf(u' ');
    open(readBytes(setData + "/input.conf"_L1));

    setInView(command.first(blank), command.sliced(blank + 1));
    ASSERT_TRUE(window->save());
    const QByteArray expected = readBytes(folder + "/expected.conf"_L1);
    EXPECT_EQ(readBytes(path), expected) << testsupport::lineDiff(expected, readBytes(path));
}

INSTANTIATE_TEST_SUITE_P(Cases, EditorSave, testing::ValuesIn(testsupport::subfolderNames(setData)),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });

// Groups of the same name each show their own settings; saved unchanged,
// the file keeps its bytes, and so it does after the value that the key
// reads changed.
TEST_F(Editor, SavedUnchangedOrChangedTheFileKeepsItsLayout)
{
    const QByteArray text = "zentaro : {\n  printer : { port = 9100; };\n  printer : { port = 9101;\n   port=9102; };\n};\n";
    open(text);
    ASSERT_TRUE(window->save());
    EXPECT_EQ(readBytes(path), text);

    setInView(u"zentaro.printer.port"_s, u"1"_s);
    ASSERT_TRUE(window->save());
    EXPECT_EQ(readBytes(path), "zentaro : {\n  printer : { port = 1; };\n  printer : { port = 9101;\n   port=9102; };\n};\n");
}

TEST_F(Editor, RefusesAValueItsKeyCannotHoldAndLeavesTheFile)
{
    const QByteArray text = readBytes(setData + "/input.conf"_L1);
    open(text);
    setInView(u"zentaro.doc.paperWidth"_s, u"forty-eight"_s);

    QString shown;
    QTimer::singleShot(0, [&shown] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            shown = box->text();
            box->close();
        }
    });
    EXPECT_FALSE(window->save());
    EXPECT_EQ(shown, u"paperWidth takes a whole number, not \"forty-eight\""_s);
    EXPECT_EQ(readBytes(path), text);
}

} // namespace

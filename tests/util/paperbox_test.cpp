// The paper prompt where a person sees it: a widgets application on a real
// display (the "xvfb" fixture's) gets a message box.
#include "hlibrary.h"
#include "testsupport.h"

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(PaperPrompt, MessageBoxOnADisplay)
{
    ASSERT_EQ(QGuiApplication::platformName(), u"xcb"_s);
    const QTemporaryDir dir;
    const QString source = dir.filePath(u"print.txt"_s), destination = dir.filePath(u"lp0"_s);
    ASSERT_TRUE(testsupport::writeBytes(source, testsupport::numberedLines(7).toStdString()));

    // Every box is answered as soon as it shows; how far the copy had come
    // is the size of the destination then.
    QStringList boxes;
    QTimer answerer;
    QObject::connect(&answerer, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        boxes << QString::number(QFileInfo(destination).size()) + u' ' + box->windowTitle() + u' ' + box->text();
        box->accept();
    });
    answerer.start(5);
    testing::internal::CaptureStdout();
    EXPECT_TRUE(HLibrary::copy(source, destination, 3u, 0u));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(boxes, (QStringList{u"44 PaperWindow Insert a new sheet"_s, u"77 PaperWindow Insert a new sheet"_s}));
    EXPECT_EQ(testsupport::readBytes(destination), testsupport::numberedLines(7));
}

} // namespace

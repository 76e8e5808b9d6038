// Golden pictures: every folder under golden/ holds a request (or a print
// file, print.txt), the settings that differ from the print run's golden
// defaults (@CASE@ is the folder), the SVG picture and the list of findings expected for it.
// GOLDEN_UPDATE=1 rewrites the expected files; review them with git diff,
// and once by eye beside the PNG (zentaro-preview --config ... request.xml
// picture.png).
#include "findings.h"
#include "preview.h"
#include "textpictures.h"

#include "testsupport.h"
#include "ztconfiguration.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using testsupport::readBytes;

namespace {

const QString casesDir = QStringLiteral(PREVIEW_GOLDEN);

// The case's settings first in the top-level group, where a lookup finds
// them before the defaults.
QByteArray configurationFor(const QDir& dir)
{
    QByteArray conf = readBytes(QStringLiteral(GOLDEN_DEFAULTS));
    conf.insert(conf.indexOf('{') + 1, "\n" + readBytes(dir.filePath(u"settings.conf"_s)));
    return conf.replace("@CASE@", dir.path().toLocal8Bit());
}

void expectFile(const QString& path, const QByteArray& actual)
{
    if (qEnvironmentVariableIntValue("GOLDEN_UPDATE") == 1) {
        ASSERT_TRUE(testsupport::writeBytes(path, actual.toStdString()));
        return;
    }
    const QByteArray expected = readBytes(path);
    EXPECT_TRUE(actual == expected) << path.toStdString() << "\n" << testsupport::lineDiff(expected, actual);
}

class GoldenPicture : public testing::TestWithParam<std::string>
{
};

TEST_P(GoldenPicture, Svg)
{
    const QDir dir(casesDir + u'/' + QString::fromStdString(GetParam()));
    const auto configuration = ZTConfiguration::fromText(configurationFor(dir));
    preview::PreviewSettings settings;
    settings.configuration = configuration.get();
    const QString input = dir.exists(u"print.txt"_s) ? u"print.txt"_s : u"request.xml"_s;
    const QByteArray bytes = readBytes(dir.filePath(input));
    ASSERT_FALSE(bytes.isEmpty());
    const preview::Paper paper = preview::previewInput(bytes, input, settings);

    expectFile(dir.filePath(u"expected.svg"_s), preview::svgPicture(paper));
    expectFile(dir.filePath(u"expected.txt"_s), preview::findingLines(paper).join(u'\n').toUtf8() + '\n');
}

INSTANTIATE_TEST_SUITE_P(Cases, GoldenPicture, testing::ValuesIn(testsupport::subfolderNames(casesDir)),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });

} // namespace

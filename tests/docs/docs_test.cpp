// The manual's examples are real: every request shown in docs/ is rendered
// by the real program with the configuration it names, the result must be
// the print file shown beside it, and zentaro-preview finds nothing wrong
// with it. In Markdown:
//
//   ```cfg config=NAME          a configuration (zentaro.conf)
//   ```xml example=ID config=NAME   a request rendered with that configuration
//   ```text output=ID [codepage=NAME]   what the print file holds, decoded
//                                      with the printer's code page (UTF-8)
//
// Fiscal command lines end in CR LF on paper; the manual shows them with a
// plain line end. DOCS_UPDATE=1 in the environment rewrites the output blocks
// from what the program prints now, for review with git diff.
#include "testsupport.h"

#include <QDir>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QString docsDir = QStringLiteral(DOCS_DIR);

struct Block
{
    QString file;
    QString kind; // config, example or output
    QString name;
    QString configName;
    QString codePage; // of an output: what its bytes are decoded with
    QString text;
    qsizetype begin = 0; // where the text stands in its file
};

std::vector<Block> blocksOf(const QString& file)
{
    std::vector<Block> blocks;
    const QString markdown = QString::fromUtf8(testsupport::readBytes(file));
    static const QRegularExpression fence(u"^```\\w+((?: \\w+=[\\w.-]+)+)[ \\t]*\\n"_s,
                                          QRegularExpression::MultilineOption);
    for (auto match = fence.globalMatch(markdown); match.hasNext();) {
        const QRegularExpressionMatch m = match.next();
        Block block{file, {}, {}, {}, {}, {}, m.capturedEnd()};
        for (const QString& word : m.captured(1).split(u' ', Qt::SkipEmptyParts)) {
            const QString key = word.section(u'=', 0, 0), value = word.section(u'=', 1);
            if (key == "config"_L1 && block.kind.isEmpty())
                block.kind = key, block.name = value;
            else if (key == "config"_L1)
                block.configName = value;
            else if (key == "codepage"_L1)
                block.codePage = value;
            else
                block.kind = key, block.name = value;
        }
        const qsizetype end = markdown.indexOf(u"\n```"_s, block.begin - 1);
        block.text = markdown.mid(block.begin, end + 1 - block.begin);
        blocks.push_back(block);
    }
    return blocks;
}

std::vector<Block> allBlocks()
{
    std::vector<Block> blocks;
    for (const QString& name : QDir(docsDir).entryList({u"*.md"_s}, QDir::Files, QDir::Name))
        for (Block& block : blocksOf(docsDir + u'/' + name))
            blocks.push_back(std::move(block));
    return blocks;
}

// Renders the request with the configuration and previews it with the same:
// `findings` is left empty when the preview finds nothing wrong.
QByteArray render(const QString& request, QString configuration, QByteArray& findings)
{
    // The manual's configurations name the installed catalogues.
    configuration.replace(u"/usr/share/zentaro/translations/"_s, QStringLiteral(ZENTARO_TRANSLATIONS) + u'/');
    QTemporaryDir home;
    testsupport::writeBytes(home.filePath(u".zentaro/conf/zentaro.conf"_s), configuration.toStdString());
    testsupport::writeBytes(home.filePath(u"request.xml"_s), request.toStdString());
    const QStringList locale{u"LC_ALL=C.UTF-8"_s};
    testsupport::runProgram(QStringLiteral(ZENTARO_PRINT), {u"request.xml"_s, u"print.txt"_s}, home.path(), {}, locale);
    const testsupport::ProgramRun preview = testsupport::runProgram(
        QStringLiteral(ZENTARO_PREVIEW), {u"request.xml"_s, u"picture.svg"_s}, home.path(), {}, locale);
    findings = preview.out;
    if (preview.status != 0)
        findings += "zentaro-preview exited with " + QByteArray::number(preview.status);
    return testsupport::readBytes(home.filePath(u"print.txt"_s)).replace("\r\n", "\n");
}

TEST(Docs, EveryExampleRendersAsShown)
{
    const std::vector<Block> blocks = allBlocks();
    std::map<QString, QString> configurations;
    std::map<QString, const Block*> outputs;
    for (const Block& block : blocks) {
        if (block.kind == "config"_L1)
            configurations[block.name] = block.text;
        else if (block.kind == "output"_L1)
            outputs[block.name] = &block;
    }
    std::map<QString, QString> rewritten; // file -> text, when updating
    int examples = 0;
    for (const Block& block : blocks) {
        if (block.kind != "example"_L1)
            continue;
        ++examples;
        SCOPED_TRACE(block.file.toStdString() + ": example " + block.name.toStdString());
        ASSERT_TRUE(block.configName.isEmpty() || configurations.count(block.configName))
            << "no configuration named " << block.configName.toStdString();
        ASSERT_TRUE(outputs.count(block.name)) << "no output block";
        const Block& shown = *outputs[block.name];
        QStringDecoder decoder(shown.codePage.isEmpty() ? "UTF-8" : shown.codePage.toLatin1().constData());
        ASSERT_TRUE(decoder.isValid()) << shown.codePage.toStdString();
        QByteArray findings;
        const QByteArray printed = QString(decoder.decode(render(block.text, configurations[block.configName], findings))).toUtf8();
        EXPECT_EQ(findings.toStdString(), "");
        if (qEnvironmentVariableIntValue("DOCS_UPDATE") == 1) {
            QString& text = rewritten.try_emplace(shown.file, QString::fromUtf8(testsupport::readBytes(shown.file))).first->second;
            const qsizetype at = text.indexOf(u"output="_s + shown.name);
            const qsizetype begin = text.indexOf(u'\n', at) + 1;
            text.replace(begin, text.indexOf(u"\n```"_s, begin - 1) + 1 - begin, QString::fromUtf8(printed));
            continue;
        }
        EXPECT_EQ(printed.toStdString(), shown.text.toUtf8().toStdString());
    }
    for (const auto& [file, text] : rewritten)
        testsupport::writeBytes(file, text.toUtf8().toStdString());
    EXPECT_GT(examples, 0) << "no examples found in " << docsDir.toStdString();
}

} // namespace

#include "commands.h"

#include "cfgedit.h"
#include "textencoding.h"
#include "treewalk.h"
#include "valuecheck.h"
#include "xmlreader.h"

#include <QFile>
#include <QFileInfo>
#include <QStringEncoder>

#include <sys/stat.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// Whether the tree nests groups deeper than the tool takes. Walking stops
// at the first group past the bound.
bool nestsTooDeep(const libconfig::ConfigNode* document)
{
    bool tooDeep = false;
    libconfig::walkTree(
        document,
        [](const libconfig::ConfigNode* node, std::size_t i) {
            return i < node->children().size() ? node->children()[i].get() : nullptr;
        },
        [&tooDeep](const libconfig::ConfigNode*, std::size_t depth) {
            // The document root and the file element stand above the groups.
            tooDeep = tooDeep || depth > maxGroupDepth + 1;
            return !tooDeep;
        },
        [](const libconfig::ConfigNode*, std::size_t) {});
    return tooDeep;
}

} // namespace

std::unique_ptr<ZTConfiguration> loadConfiguration(const Invocation& invocation)
{
    // The readers take a file that cannot be read for an empty one; here
    // that is an error worth its own message.
    const QFileInfo info(invocation.file);
    QFile file(invocation.file);
    if (!info.exists() || !info.isFile() || !file.open(QIODevice::ReadOnly)) {
        const QString reason = !info.exists() ? u"no such file"_s
            : !info.isFile()                  ? u"not a regular file"_s
                                              : file.errorString();
        printError(u"cannot read %1: %2"_s.arg(invocation.file, reason));
        return nullptr;
    }
    file.close();
    auto configuration = std::make_unique<ZTConfiguration>(invocation.file, invocation.format);
    // Every well-formed XML file has a root element; the reader keeps
    // nothing of one that does not parse.
    if (invocation.format == "xml"_L1 && !configuration->document()->firstChild()) {
        // A valid file can hold a value too large for the reader.
        const qint64 line = configuration->oversizedMarkupLine();
        const QString why = line < 0
            ? u"not well-formed XML"_s
            : u"a start tag or other markup at line %1 is larger than the limit of %2 MiB"_s.arg(line).arg(
                  XmlReader::largestMarkup >> 20);
        printError(u"cannot read %1: %2"_s.arg(invocation.file, why));
        return nullptr;
    }
    if (nestsTooDeep(configuration->document())) {
        printError(u"cannot read %1: groups nested deeper than %2 levels"_s.arg(invocation.file).arg(maxGroupDepth));
        return nullptr;
    }
    return configuration;
}

namespace {

// The value in the bytes of the file it came from, so that a script gets
// what the file holds.
int printValue(const ZTConfiguration& configuration, const Invocation& invocation)
{
    const QString value = configuration.lookup(invocation.argument);
    if (value.isEmpty())
        return exitFailure;
    QStringEncoder encode(libconfig::textEncoding(invocation.format));
    const QByteArray line = encode(value + u'\n');
    std::fwrite(line.constData(), 1, std::size_t(line.size()), stdout);
    return exitSuccess;
}

// The input is never written over: a conversion goes to another file. The
// same file may have other names (hard links, symbolic links, bind
// mounts), so it is told by its device and inode, not by its path.
bool isTheInput(const QString& output, const Invocation& invocation)
{
    struct stat target {};
    struct stat input {};
    return ::stat(QFile::encodeName(output).constData(), &target) == 0
        && ::stat(QFile::encodeName(invocation.file).constData(), &input) == 0 && target.st_dev == input.st_dev
        && target.st_ino == input.st_ino;
}

int writeCopy(const ZTConfiguration& configuration, const Invocation& invocation)
{
    if (isTheInput(invocation.argument, invocation)) {
        printError(u"%1 is the file being read; write to another file"_s.arg(invocation.argument));
        return exitFailure;
    }
    // The writers report a file they cannot write on their own line.
    const bool written = invocation.command == "write-xml"_L1
        ? configuration.buildConfigXmlFile(invocation.argument)
        : configuration.buildConfigFile(invocation.argument);
    return written ? exitSuccess : exitFailure;
}

// Changes the value's bytes in the file and nothing else.
int setValue(const Invocation& invocation)
{
    if (invocation.format != "cfg"_L1) {
        printError(u"set changes cfg files only; %1 is XML"_s.arg(invocation.file));
        return exitFailure;
    }
    QString problem = valueProblem(invocation.argument, invocation.value);
    QFile file(invocation.file);
    if (problem.isEmpty() && !file.open(QIODevice::ReadOnly))
        problem = u"cannot read %1: %2"_s.arg(invocation.file, file.errorString());
    std::optional<QByteArray> edited;
    if (problem.isEmpty())
        edited = libconfig::setCfgSetting(file.readAll(), invocation.argument, invocation.value, &problem);
    if (edited && libconfig::replaceFileContents(invocation.file, *edited, &problem))
        return exitSuccess;
    printError(problem);
    return exitFailure;
}

} // namespace

int runCommand(const Invocation& invocation)
{
    const std::unique_ptr<ZTConfiguration> configuration = loadConfiguration(invocation);
    if (!configuration)
        return exitFailure;
    if (invocation.command == "set"_L1)
        return setValue(invocation);
    if (invocation.command == "get"_L1)
        return printValue(*configuration, invocation);
    if (invocation.command == "dump"_L1) {
        configuration->printConfigTree();
        return exitSuccess;
    }
    return writeCopy(*configuration, invocation);
}

#include "commands.h"

#include "textencoding.h"
#include "xmlreader.h"

#include <QFile>
#include <QFileInfo>
#include <QStringEncoder>

#include <cstdio>

using namespace Qt::StringLiterals;

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

// The input is never written over: a conversion goes to another file.
bool isTheInput(const QString& output, const Invocation& invocation)
{
    const QString target = QFileInfo(output).canonicalFilePath();
    return !target.isEmpty() && target == QFileInfo(invocation.file).canonicalFilePath();
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

} // namespace

int runCommand(const Invocation& invocation)
{
    const std::unique_ptr<ZTConfiguration> configuration = loadConfiguration(invocation);
    if (!configuration)
        return exitFailure;
    if (invocation.command == "get"_L1)
        return printValue(*configuration, invocation);
    if (invocation.command == "dump"_L1) {
        configuration->printConfigTree();
        return exitSuccess;
    }
    return writeCopy(*configuration, invocation);
}

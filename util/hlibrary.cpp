#include "hlibrary.h"

#include "databasemanager.h"
#include "diagnostics.h"
#include "documenttypes.h"
#include "emptytext.h"
#include "sleepthread.h"
#include "syncsingleton.h"
#include "ztconfiguration.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QMessageBox>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

using namespace Qt::StringLiterals;

namespace {

const ZTConfiguration* configurationOrUsers(const ZTConfiguration* given)
{
    return given ? given : SyncSingleton<ZTConfiguration>::instance();
}

QString setting(const ZTConfiguration* configuration, const QString& key)
{
    return configurationOrUsers(configuration)->getStrValue(key);
}

void pause(unsigned milliseconds)
{
    if (milliseconds != 0)
        SleepThread pause(milliseconds);
}

// Consumes standard input up to the end of a line or of the input. Once the
// input has ended, later prompts go on at once.
void waitForLine()
{
    int c;
    do
        c = std::getchar();
    while (c != EOF && c != '\n');
}

// A process running a QApplication has a graphical session and gets a
// modal box. Anything else, such as a point-of-sale box without a display,
// gets the text on standard output and goes on after a line on standard
// input (or its end).
void askForNewSheet()
{
    const QString caption = QCoreApplication::translate("HLibrary", "PaperWindow");
    const QString text = QCoreApplication::translate("HLibrary", "Insert a new sheet");
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
        QMessageBox::information(nullptr, caption, text);
        return;
    }
    printDiagnostic({text.toLocal8Bit()});
    waitForLine();
}

// The two files of a copy, read and written one line at a time. A line is
// read in one piece of at most 127 bytes; a longer line takes several. The
// result says how far the copy came and, once it failed, why.
class LineCopy
{
public:
    using Failure = HLibrary::CopyResult::Failure;
    enum class Step { Copied, SourceEnded, DestinationFailed };

    LineCopy(const QString& src, const QString& dst)
        : source(src), destination(dst)
    {
    }

    // The source first: a file that cannot be read leaves the destination
    // as it was.
    bool open()
    {
        if (!source.open(QIODevice::ReadOnly))
            return fail(Failure::SourceUnreadable, source);
        if (!destination.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return fail(Failure::DestinationUnopenable, destination);
        return true;
    }

    bool sourceAtEnd() const { return source.atEnd(); }

    // Writes exactly the bytes read and flushes them, so that a printer
    // gets each line as soon as it is read.
    Step copyLine()
    {
        const qint64 length = source.readLine(buffer, sizeof buffer);
        if (length <= 0)
            return Step::SourceEnded;
        if (destination.write(buffer, length) != length || !destination.flush()) {
            fail(Failure::WriteFailed, destination);
            return Step::DestinationFailed;
        }
        ++result.linesWritten;
        result.bytesWritten += quint64(length);
        return Step::Copied;
    }

    void skipLine() { (void)source.readLine(buffer, sizeof buffer); }

    HLibrary::CopyResult noSuchPage()
    {
        result.failure = Failure::NoSuchPage;
        return result;
    }

    HLibrary::CopyResult result;

private:
    bool fail(Failure failure, const QFile& file)
    {
        result.failure = failure;
        result.errorText = file.errorString();
        return false;
    }

    QFile source;
    QFile destination;
    char buffer[128];
};

} // namespace

QString HLibrary::appData()
{
    return emptyText();
}

QString HLibrary::programFiles()
{
    return emptyText();
}

QString HLibrary::dataPath()
{
    return QDir::homePath();
}

QString HLibrary::psql()
{
    return u"psql"_s;
}

QString HLibrary::dropdb()
{
    return u"dropdb"_s;
}

QString HLibrary::pg_dump()
{
    return u"pg_dump"_s;
}

QString HLibrary::pg_restore()
{
    return u"pg_restore"_s;
}

QString HLibrary::toWindowsFormat(QString path)
{
    return path;
}

QString HLibrary::fromUtf8(const QString& text)
{
    return text;
}

bool HLibrary::copy(const QString& src, const QString& dst, unsigned linesPerSheet, unsigned pauseMs)
{
    return copyWithResult(src, dst, linesPerSheet, pauseMs).succeeded();
}

bool HLibrary::copy(const QString& src, const QString& dst, unsigned linesPerPage, unsigned pauseMs,
                    unsigned page)
{
    return copyWithResult(src, dst, linesPerPage, pauseMs, page).succeeded();
}

HLibrary::CopyResult HLibrary::copyWithResult(const QString& src, const QString& dst, unsigned linesPerSheet,
                                              unsigned pauseMs)
{
    LineCopy files(src, dst);
    if (!files.open())
        return files.result;
    // The counter is tested before it counts the line just written, so the
    // first sheet takes one line more than the others. The suite's sheet
    // lengths are set with that count in mind: keep it.
    unsigned n = 0;
    while (!files.sourceAtEnd()) {
        const LineCopy::Step step = files.copyLine();
        if (step == LineCopy::Step::DestinationFailed)
            return files.result;
        if (step == LineCopy::Step::SourceEnded)
            break;
        if (linesPerSheet != 0 && n >= linesPerSheet) {
            askForNewSheet();
            n = 0;
        }
        pause(pauseMs);
        ++n;
    }
    return files.result;
}

HLibrary::CopyResult HLibrary::copyWithResult(const QString& src, const QString& dst, unsigned linesPerPage,
                                              unsigned pauseMs, unsigned page)
{
    LineCopy files(src, dst);
    if (!files.open())
        return files.result;
    const std::uint64_t linesBefore = std::uint64_t(linesPerPage) * page;
    for (std::uint64_t skipped = 0; skipped < linesBefore; ++skipped) {
        files.skipLine();
        if (files.sourceAtEnd())
            return files.noSuchPage();
    }

    const auto pageIsFull = [linesPerPage](unsigned written) {
        return linesPerPage != 0 && written >= linesPerPage;
    };
    for (unsigned written = 0; !pageIsFull(written) && !files.sourceAtEnd();) {
        const LineCopy::Step step = files.copyLine();
        if (step == LineCopy::Step::DestinationFailed)
            return files.result;
        if (step == LineCopy::Step::SourceEnded)
            break;
        ++written;
        // No pause after the last line of the page.
        if (!pageIsFull(written) && !files.sourceAtEnd())
            pause(pauseMs);
    }
    return files.result;
}

bool HLibrary::copy(const QString& src, const QString& dst, const QString& linesPerSheet, const QString& pauseMs)
{
    return copy(src, dst, linesPerSheet.toUInt(), pauseMs.toUInt());
}

void HLibrary::askForNewSheet()
{
    ::askForNewSheet();
}

void HLibrary::touch(const QString& path)
{
    QFile file(path);
    (void)file.open(QIODevice::WriteOnly | QIODevice::Truncate);
}

QString HLibrary::getNewRand()
{
    std::srand(unsigned(std::time(nullptr)));
    return QString::number(std::rand());
}

int HLibrary::comboBoxIndexOf(const QComboBox* box, const QString& text)
{
    if (!box)
        return -1;
    for (int index = 0; index < box->count(); ++index) {
        if (box->itemText(index) == text)
            return index;
    }
    return -1;
}

void HLibrary::hsleep(unsigned seconds)
{
    QThread::sleep(seconds);
}

QString HLibrary::copyNumber(const QString& documentType, const ZTConfiguration* configuration)
{
    const DocumentType* type = DocumentTypes::find(documentType);
    if (!type) {
        printDiagnostic({"Error into HLibrary::copyNumber::documentPath: ", documentType.toLower().toLocal8Bit()});
        type = &DocumentTypes::prefiscal;
    }
    return setting(configuration, type->copyNumberKey());
}

QString HLibrary::truncateDecimal(double value)
{
    // Thousandths, truncated toward zero into 32 bits. Amounts beyond that
    // range have no meaningful result; they are clamped rather than left to
    // an undefined conversion.
    const double scaled = value * 1000;
    const std::int32_t thousandths = std::isnan(scaled)
        ? 0
        : std::int32_t(std::clamp(scaled, double(INT32_MIN), double(INT32_MAX)));
    // Hundredths, half up on the third decimal. For a negative amount the
    // fraction is never 0.5 or more: it is truncated toward zero.
    const double tenths = thousandths / 10.0;
    const int whole = int(tenths);
    const int hundredths = tenths - whole >= 0.5 ? int(tenths + 1) : whole;

    const QString text = QString::number(hundredths / 100.0, 'g', 15);
    const qsizetype point = text.indexOf(u'.');
    if (point < 0)
        return text + ".00"_L1;
    return text.left(point) + text.mid(point).leftJustified(3, u'0');
}

QString HLibrary::dbname(const ZTConfiguration* configuration)
{
    return setting(configuration, u"zentaro.db.dbname"_s);
}

QString HLibrary::username(const ZTConfiguration* configuration)
{
    return setting(configuration, u"zentaro.db.username"_s);
}

QString HLibrary::password(const ZTConfiguration* configuration)
{
    return setting(configuration, u"zentaro.db.password"_s);
}

QString HLibrary::hostname(const ZTConfiguration* configuration)
{
    return setting(configuration, u"zentaro.db.hostname"_s);
}

QSqlDatabase* HLibrary::newDBConnection(const QString& connectionName, const ZTConfiguration* configuration)
{
    return SyncSingleton<DatabaseManager>::instance()->createConnection(
        u"QPSQL7"_s, dbname(configuration), username(configuration), password(configuration),
        hostname(configuration), connectionName);
}

QString HLibrary::pathWithBinaryFile(const QString& file, const ZTConfiguration* configuration)
{
    return setting(configuration, u"zentaro.bin.path"_s) + u'/' + file;
}

QString HLibrary::getCoreFile()
{
    const QStringList cores = QDir::current().entryList({u"core*"_s}, QDir::Files | QDir::CaseSensitive,
                                                        QDir::Name | QDir::IgnoreCase);
    return cores.isEmpty() ? emptyText() : cores.first();
}

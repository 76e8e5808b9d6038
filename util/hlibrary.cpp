#include "hlibrary.h"

#include "databasemanager.h"
#include "diagnostics.h"
#include "documenttypes.h"
#include "emptytext.h"
#include "syncsingleton.h"
#include "ztconfiguration.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <cstdint>
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

// A file read one line at a time: a line is read in one piece of at most
// 127 bytes, and a longer line takes several.
class FileLines final : public pagedcopy::LineSource
{
public:
    explicit FileLines(const QString& path)
        : file(path)
    {
    }

    bool open() { return file.open(QIODevice::ReadOnly); }
    QByteArrayView nextLine() override
    {
        const qint64 length = file.readLine(buffer, sizeof buffer);
        return length > 0 ? QByteArrayView(buffer, length) : QByteArrayView();
    }
    bool atEnd() const override { return file.atEnd(); }
    bool rewind() override { return file.seek(0); }
    QString errorString() const override { return file.errorString(); }

private:
    QFile file;
    char buffer[128];
};

// A file or device written one line at a time: each line is written exactly
// as read and flushed, so that a printer gets it at once.
class FileSink final : public pagedcopy::LineSink
{
public:
    explicit FileSink(const QString& path)
        : file(path)
    {
    }

    bool open() { return file.open(QIODevice::WriteOnly | QIODevice::Truncate); }
    bool write(QByteArrayView line) override
    {
        if (file.write(line.data(), line.size()) != line.size() || !file.flush())
            return false;
        ++lines;
        bytes += quint64(line.size());
        return true;
    }
    bool flush() override { return true; }
    quint64 linesOut() const override { return lines; }
    quint64 bytesOut() const override { return bytes; }
    QString errorString() const override { return file.errorString(); }

private:
    QFile file;
    quint64 lines = 0;
    quint64 bytes = 0;
};

// Opens the two files, the source first: a file that cannot be read leaves
// the destination as it was. Then the copy.
HLibrary::CopyResult copyFile(const QString& src, const QString& dst, const pagedcopy::Paging& paging)
{
    using Failure = HLibrary::CopyResult::Failure;
    FileLines source(src);
    if (!source.open())
        return HLibrary::CopyResult::failed(Failure::SourceUnreadable, source.errorString());
    FileSink destination(dst);
    if (!destination.open())
        return HLibrary::CopyResult::failed(Failure::DestinationUnopenable, destination.errorString());
    return pagedcopy::copy(source, destination, paging);
}

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
    pagedcopy::Paging paging;
    paging.linesPerSheet = linesPerSheet;
    paging.pauseMs = pauseMs;
    return copyFile(src, dst, paging);
}

HLibrary::CopyResult HLibrary::copyWithResult(const QString& src, const QString& dst, unsigned linesPerPage,
                                              unsigned pauseMs, unsigned page)
{
    pagedcopy::Paging paging;
    paging.linesPerPage = linesPerPage;
    paging.pauseMs = pauseMs;
    paging.page = page;
    return copyFile(src, dst, paging);
}

bool HLibrary::copy(const QString& src, const QString& dst, const QString& linesPerSheet, const QString& pauseMs)
{
    return copy(src, dst, linesPerSheet.toUInt(), pauseMs.toUInt());
}

void HLibrary::askForNewSheet()
{
    pagedcopy::askForNewSheet();
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
    // The exact text is the suite's interface; the function it names is the suite's, not ours.
    const DocumentType& type =
        DocumentTypes::findOrReport(documentType, "Error into HLibrary::copyNumber::documentPath: ");
    return setting(configuration, type.copyNumberKey());
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

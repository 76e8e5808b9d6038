// zentaro-send to a queue of a real CUPS scheduler (the "cups" fixture),
// whose raw queue hands the job to the printer emulator through the
// scheduler's own socket backend.
#include "printeremulator.h"
#include "testsupport.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// CUPS_SERVER=... as the fixture wrote it.
QString schedulerSetting()
{
    QFile settings(QStringLiteral(ZENTARO_CUPS_DIR "/cups.env"));
    if (!settings.open(QIODevice::ReadOnly))
        return {};
    for (const QByteArray& line : settings.readAll().split('\n')) {
        if (line.startsWith("CUPS_SERVER="))
            return QString::fromLocal8Bit(line);
    }
    return {};
}

class CupsSend : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(server.isEmpty()) << "no scheduler: the cups fixture did not start";
        ASSERT_TRUE(home.isValid());
        ASSERT_TRUE(testsupport::writeBytes(home.filePath(u".zentaro/conf/zentaro.conf"_s), "zentaro : { };\n"));
    }

    // Adds (or points again) a raw queue at the emulator.
    bool addQueue(const QString& name)
    {
        QProcess lpadmin;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"CUPS_SERVER"_s, server.section(u'=', 1));
        lpadmin.setProcessEnvironment(environment);
        lpadmin.start(u"lpadmin"_s, {u"-p"_s, name, u"-E"_s, u"-v"_s, printer.uri(), u"-m"_s, u"raw"_s, u"-o"_s,
                                     u"printer-error-policy=abort-job"_s});
        return lpadmin.waitForFinished(30000) && lpadmin.exitCode() == 0;
    }

    testsupport::ProgramRun send(const QStringList& arguments) const
    {
        return testsupport::runProgram(QStringLiteral(ZENTARO_SEND), arguments, home.path(), {}, {server});
    }

    const QString server = schedulerSetting();
    QTemporaryDir home;
    testsupport::PrinterEmulator printer;
};

TEST_F(CupsSend, RawJobDeliversTheExactBytes)
{
    ASSERT_TRUE(addQueue(u"kitchen"_s));
    QByteArray ticket;
    for (int byte = 0; byte < 256 * 40; ++byte)
        ticket += char(byte % 256);
    ASSERT_TRUE(testsupport::writeBytes(home.filePath(u"ticket.bin"_s), ticket.toStdString()));

    const testsupport::ProgramRun run = send({u"--wait"_s, u"ticket.bin"_s, u"cups:kitchen"_s});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(run.err, "");
    const QByteArray job = run.out.left(run.out.indexOf('\n'));
    EXPECT_TRUE(job.startsWith("job kitchen-")) << run.out.toStdString();
    EXPECT_EQ(run.out, job + '\n' + job + " completed\n");
    EXPECT_TRUE(printer.waitForBytes(ticket.size(), 10000));
    EXPECT_TRUE(printer.received() == ticket);
}

TEST_F(CupsSend, FailuresAreOneLine)
{
    ASSERT_TRUE(testsupport::writeBytes(home.filePath(u"ticket.txt"_s), "ticket\n"));
    const testsupport::ProgramRun missing = send({u"ticket.txt"_s, u"cups:nowhere"_s});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "zentaro-send: cannot open cups:nowhere: no CUPS queue named nowhere\n");

    // The printer behind the queue is gone: the scheduler keeps the job and
    // tries again, the wait for it ends.
    ASSERT_TRUE(addQueue(u"counter"_s));
    printer.refuse();
    const testsupport::ProgramRun waiting = send({u"--wait"_s, u"--timeout"_s, u"1"_s, u"ticket.txt"_s,
                                                  u"cups:counter"_s});
    EXPECT_EQ(waiting.status, 1);
    EXPECT_TRUE(waiting.err.startsWith("zentaro-send: job counter-")) << waiting.err.toStdString();
    EXPECT_TRUE(waiting.err.contains(" still printing after 1 s (")) << waiting.err.toStdString();
    EXPECT_EQ(waiting.err.count('\n'), 1);
}

} // namespace

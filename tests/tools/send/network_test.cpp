// zentaro-send to a network printer: the printer emulator on the loopback
// interface stands for a receipt printer on port 9100, answering status
// requests and misbehaving as the test asks.
#include "printeremulator.h"
#include "testsupport.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using testsupport::PrinterEmulator;
using testsupport::writeBytes;

namespace {

class NetworkSend : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        ASSERT_TRUE(writeBytes(home.filePath(u".zentaro/conf/zentaro.conf"_s), "zentaro : { };\n"));
    }

    testsupport::ProgramRun send(const QStringList& arguments) const
    {
        return testsupport::runProgram(QStringLiteral(ZENTARO_SEND), arguments, home.path());
    }

    // A print file of `bytes` bytes in lines of various lengths, each byte
    // telling its place, so that a lost, doubled or swapped piece shows.
    QString printFile(qsizetype bytes)
    {
        QByteArray text;
        for (int line = 0; text.size() < bytes; ++line)
            text += QByteArray::number(line).repeated(1 + line % 70) + '\n';
        text.truncate(bytes);
        content = text;
        const QString path = home.filePath(u"ticket.txt"_s);
        EXPECT_TRUE(writeBytes(path, text.toStdString()));
        return path;
    }

    QTemporaryDir home;
    PrinterEmulator printer;
    QByteArray content;
};

TEST_F(NetworkSend, BytesArriveOnceAndInOrder)
{
    const QString file = printFile(5 << 20);
    const testsupport::ProgramRun run = send({file, printer.uri()});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_TRUE(printer.waitForBytes(content.size(), 5000));
    EXPECT_TRUE(printer.received() == content);
    EXPECT_EQ(printer.connections(), 1);

    // Copies follow one another on the same connection.
    const testsupport::ProgramRun copies = send({u"--copies"_s, u"2"_s, file, printer.uri()});
    EXPECT_EQ(copies.status, 0) << copies.err.toStdString();
    EXPECT_TRUE(printer.waitForBytes(content.size() * 3, 5000));
    EXPECT_TRUE(printer.received() == content.repeated(3));
    EXPECT_EQ(printer.connections(), 2);
}

// A printer named in the configuration given with --config, not the
// user's: the user's has none.
TEST_F(NetworkSend, NamedPrinter)
{
    const QString file = printFile(500);
    const QString settings = home.filePath(u"shop.conf"_s);
    ASSERT_TRUE(writeBytes(settings, "zentaro : { printers : { kitchen : { uri = \"" + printer.uri().toStdString()
                                         + "\"; }; }; };\n"));
    const testsupport::ProgramRun run = send({u"--config"_s, settings, u"--printer"_s, u"kitchen"_s, file});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_TRUE(printer.waitForBytes(content.size(), 5000));
    EXPECT_EQ(printer.received(), content);

    const testsupport::ProgramRun status = send({u"--config"_s, settings, u"--status"_s, u"--printer"_s, u"kitchen"_s});
    EXPECT_EQ(status.status, 0) << status.err.toStdString();
    EXPECT_EQ(status.out, "online\n");
}

TEST_F(NetworkSend, StatusLinesAndExitStatus)
{
    const struct
    {
        const char* name;
        std::uint8_t printer, offlineCause, paperSensor;
        const char* lines;
        int status;
    } cases[] = {
        {"ready", 0x12, 0x12, 0x12, "online\n", 0},
        {"offline", 0x1a, 0x12, 0x12, "offline\n", 3},
        {"cover_open", 0x12, 0x16, 0x12, "online\ncover open\n", 3},
        {"paper_near_end", 0x12, 0x12, 0x1e, "online\npaper near end\n", 0},
        {"paper_end", 0x12, 0x32, 0x7e, "offline\npaper near end\npaper end\n", 3},
        {"drawer_open", 0x16, 0x12, 0x12, "online\ndrawer open\n", 0},
    };
    for (const auto& c : cases) {
        // A printer stopped for want of paper is off line too.
        printer.setStatus(c.printer | (c.offlineCause & 0x20 ? 0x08 : 0), c.offlineCause, c.paperSensor);
        const testsupport::ProgramRun run = send({u"--status"_s, printer.uri()});
        EXPECT_EQ(run.status, c.status) << c.name << run.err.toStdString();
        EXPECT_EQ(run.out, c.lines) << c.name;
    }
    printer.answerNothing();
    QElapsedTimer clock;
    clock.start();
    const testsupport::ProgramRun silent = send({u"--timeout"_s, u"1"_s, u"--status"_s, printer.uri()});
    EXPECT_EQ(silent.status, 1);
    EXPECT_EQ(silent.err, "zentaro-send: no status from " + printer.uri().toUtf8() + ": no answer within 1 s\n");
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_EQ(printer.received(), "");
}

TEST_F(NetworkSend, CheckRefusesAPrinterThatCannotPrint)
{
    const QString file = printFile(1000);
    printer.setStatus(0x12, 0x12, 0x72);
    const testsupport::ProgramRun refused = send({u"--check"_s, file, printer.uri()});
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(refused.err, "zentaro-send: " + printer.uri().toUtf8() + " is not ready: paper end; nothing sent\n");
    EXPECT_EQ(printer.received(), "");

    // A printer that does not say is sent to, with a line saying so.
    printer.answerNothing();
    const testsupport::ProgramRun unknown = send({u"--check"_s, u"--timeout"_s, u"1"_s, file, printer.uri()});
    EXPECT_EQ(unknown.status, 0);
    EXPECT_EQ(unknown.err, "zentaro-send: status of " + printer.uri().toUtf8()
                               + " unknown (no answer within 1 s); sending\n");
    EXPECT_TRUE(printer.waitForBytes(content.size(), 5000));
    EXPECT_EQ(printer.received(), content);
}

// What reached the printer, as the error line says it: "... after L lines
// (B bytes): ..."
quint64 reportedBytes(const QByteArray& err)
{
    const qsizetype open = err.indexOf(" lines (");
    return open < 0 ? ~0ull : err.mid(open + 8, err.indexOf(" bytes)") - open - 8).toULongLong();
}

// Printers that fail in mid-job: the failure is reported within the
// timeout with what went out, and never retried, so that nothing prints
// twice.
TEST_F(NetworkSend, FailureInMidJobIsReportedNotRetried)
{
    const QString file = printFile(8 << 20);
    const struct
    {
        const char* name;
        PrinterEmulator::Behaviour behaviour;
        const char* error; // the system's words vary with the moment of a hang-up
    } cases[] = {
        {"stall", PrinterEmulator::Behaviour::Stall, ": it took no data for 1 s\n"},
        {"hang_up", PrinterEmulator::Behaviour::HangUpAfter, "\n"},
    };
    for (const auto& c : cases) {
        PrinterEmulator failing;
        failing.setBehaviour(c.behaviour, 100000);
        QElapsedTimer clock;
        clock.start();
        const testsupport::ProgramRun run = send({u"--timeout"_s, u"1"_s, file, failing.uri()});
        EXPECT_LT(clock.elapsed(), 8000) << c.name;
        EXPECT_EQ(run.status, 1) << c.name;
        EXPECT_TRUE(run.err.startsWith("zentaro-send: cannot write to " + failing.uri().toUtf8() + " after "))
            << run.err.toStdString();
        EXPECT_TRUE(run.err.endsWith(c.error) && run.err.count('\n') == 1) << run.err.toStdString();
        EXPECT_GE(reportedBytes(run.err), quint64(failing.received().size())) << run.err.toStdString();
        EXPECT_LT(reportedBytes(run.err), quint64(content.size())) << run.err.toStdString();
        EXPECT_TRUE(content.startsWith(failing.received())) << c.name;
        EXPECT_EQ(failing.connections(), 1) << c.name;
    }
}

TEST_F(NetworkSend, RefusedConnectionIsRetriedThenReported)
{
    const QString file = printFile(100);
    printer.refuse();
    QElapsedTimer clock;
    clock.start();
    const testsupport::ProgramRun run = send({file, printer.uri()});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, "zentaro-send: cannot open " + printer.uri().toUtf8() + ": Connection refused (3 tries)\n");
    // Two growing pauses: 250 and 500 ms.
    EXPECT_GE(clock.elapsed(), 750);
}

} // namespace

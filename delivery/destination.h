#pragma once

// Where a print file goes: a device path, a printer on the network, a CUPS
// queue or standard output, all behind one small interface. A destination
// is opened once, takes bytes until it fails or is closed, and answers what
// it knows of the printer's state. Nothing here knows about lines, pages or
// copies: the sender above it does.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace delivery {

using Milliseconds = std::chrono::milliseconds;

// What an ESC/POS printer says of itself in answer to its real-time status
// requests (DLE EOT 1, 2 and 4).
struct PrinterStatus
{
    bool offline = false;
    bool coverOpen = false;
    bool paperNearEnd = false;
    bool paperEnd = false;
    bool drawerOpen = false;

    // Reads the three answer bytes; nothing when one of them is not a
    // status byte (fixed bits 1 and 4 set, 0 and 7 clear).
    static std::optional<PrinterStatus> fromAnswers(std::uint8_t printer, std::uint8_t offlineCause,
                                                    std::uint8_t paperSensor);
    // A printer that is off line, open or out of paper prints nothing.
    bool canPrint() const { return !offline && !coverOpen && !paperEnd; }
    // One line each: "online" or "offline", then what else holds.
    QStringList facts() const;
};

// The three requests, in the order fromAnswers takes the answers.
extern const QByteArray statusRequests[3];

class Destination
{
public:
    // How a write ended: bytes that went out, and why the rest did not.
    struct Written
    {
        std::uint64_t bytes = 0;
        bool complete = false;
    };

    virtual ~Destination() = default;

    // The name the destination was given, for messages.
    QString name() const { return m_name; }
    // Why the last call failed, in the system's words.
    QString errorString() const { return m_error; }
    // Whether the name is that of a spooler queue, whose failures are the
    // spooler's answers rather than a printer that is not ready.
    virtual bool isQueue() const { return false; }

    // Connects or opens, waiting at most `timeout`. A title names the job
    // where the transport keeps one.
    virtual bool open(Milliseconds timeout, const QString& title) = 0;
    // Writes all of `data`, waiting at most `timeout` each time the
    // destination takes no more bytes.
    virtual Written write(const char* data, std::uint64_t length, Milliseconds timeout) = 0;
    // Asks the printer for its state; nothing when the transport cannot ask
    // or the printer does not answer within `timeout`.
    virtual std::optional<PrinterStatus> status(Milliseconds timeout);
    // Ends the job: true when everything written is known to be delivered.
    virtual bool close(Milliseconds timeout) = 0;
    // Once closed: a line to print about the job (a spooler's job id), or
    // nothing.
    virtual QString jobReport() const { return {}; }
    // Waits, at most `timeout`, until the spooler has finished the job; how
    // the job stands in `state`. True only for a completed job.
    virtual bool waitForJob(Milliseconds timeout, QString* state);

protected:
    explicit Destination(const QString& name)
        : m_name(name)
    {
    }
    bool fail(const QString& error)
    {
        m_error = error;
        return false;
    }

private:
    QString m_name;
    QString m_error;
};

// The destination a name stands for: "-" (standard output), "socket://HOST[:PORT]",
// "cups:QUEUE", or a path. Nothing, with `error` set, for a name that looks
// like a network address or an unknown scheme and is no existing path.
std::unique_ptr<Destination> makeDestination(const QString& name, QString* error);

} // namespace delivery

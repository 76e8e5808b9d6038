#pragma once

// A network receipt printer on 127.0.0.1, on a free port, for the tests:
// it keeps the print data it is sent, answers the real-time status requests
// (DLE EOT 1, 2, 4) with the bytes a test sets, and can misbehave as real
// printers do: refuse connections, stop reading, or hang up in mid-job.
// One thread serves one connection at a time; every wait in it is bounded.

#include <QByteArray>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>

namespace testsupport {

class PrinterEmulator
{
public:
    enum class Behaviour {
        Print,
        Stall, // accepts and never reads
        HangUpAfter, // closes the connection once it has read hangUpAfter bytes
    };

    PrinterEmulator();
    ~PrinterEmulator();
    PrinterEmulator(const PrinterEmulator&) = delete;
    PrinterEmulator& operator=(const PrinterEmulator&) = delete;

    quint16 port() const { return m_port; }
    // "socket://127.0.0.1:PORT"
    QString uri() const;

    void setBehaviour(Behaviour behaviour, std::uint64_t hangUpAfter = 0);
    // The answers to DLE EOT 1, 2 and 4; an online printer with paper by
    // default. Answering nothing leaves status requests unanswered.
    void setStatus(std::uint8_t printer, std::uint8_t offlineCause, std::uint8_t paperSensor);
    void answerNothing();
    // Stops listening: connections are refused from then on.
    void refuse();

    // Print data received so far (status requests taken out), over all
    // connections.
    QByteArray received() const;
    int connections() const { return m_connections; }
    // Waits, at most `milliseconds`, until `bytes` bytes have come.
    bool waitForBytes(std::uint64_t bytes, int milliseconds) const;

private:
    void serve();
    void serveConnection(int fd);

    int m_listener = -1;
    quint16 m_port = 0;
    int m_wakeUp[2] = {-1, -1}; // a pipe that ends the thread's waits
    std::thread m_thread;
    mutable std::mutex m_mutex;
    QByteArray m_received;
    Behaviour m_behaviour = Behaviour::Print;
    std::uint64_t m_hangUpAfter = 0;
    std::uint8_t m_status[3] = {0x12, 0x12, 0x12};
    bool m_answers = true;
    std::atomic<int> m_connections{0};
};

} // namespace testsupport

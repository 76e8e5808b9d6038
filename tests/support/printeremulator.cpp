#include "printeremulator.h"

#include <QString>

#include <arpa/inet.h>
#include <chrono>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace testsupport {

PrinterEmulator::PrinterEmulator()
{
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // A small receive buffer makes a printer that stops reading fill up
    // soon, as a real one does.
    const int small = 16 << 10;
    ::setsockopt(m_listener, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(m_listener, 8) != 0
        || ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        std::abort();
    m_port = ntohs(address.sin_port);
    if (::pipe2(m_wakeUp, O_CLOEXEC) != 0)
        std::abort();
    m_thread = std::thread([this] { serve(); });
}

PrinterEmulator::~PrinterEmulator()
{
    (void)::write(m_wakeUp[1], "x", 1);
    m_thread.join();
    if (m_listener >= 0)
        ::close(m_listener);
    ::close(m_wakeUp[0]);
    ::close(m_wakeUp[1]);
}

QString PrinterEmulator::uri() const
{
    return QStringLiteral("socket://127.0.0.1:%1").arg(m_port);
}

void PrinterEmulator::setBehaviour(Behaviour behaviour, std::uint64_t hangUpAfter)
{
    const std::lock_guard lock(m_mutex);
    m_behaviour = behaviour;
    m_hangUpAfter = hangUpAfter;
}

void PrinterEmulator::setStatus(std::uint8_t printer, std::uint8_t offlineCause, std::uint8_t paperSensor)
{
    const std::lock_guard lock(m_mutex);
    m_status[0] = printer;
    m_status[1] = offlineCause;
    m_status[2] = paperSensor;
    m_answers = true;
}

void PrinterEmulator::answerNothing()
{
    const std::lock_guard lock(m_mutex);
    m_answers = false;
}

void PrinterEmulator::refuse()
{
    const std::lock_guard lock(m_mutex);
    ::shutdown(m_listener, SHUT_RDWR);
}

QByteArray PrinterEmulator::received() const
{
    const std::lock_guard lock(m_mutex);
    return m_received;
}

bool PrinterEmulator::waitForBytes(std::uint64_t bytes, int milliseconds) const
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (std::uint64_t(received().size()) < bytes) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

// Accepts connections until the emulator is destroyed.
void PrinterEmulator::serve()
{
    for (;;) {
        pollfd waits[2] = {{m_wakeUp[0], POLLIN, 0}, {m_listener, POLLIN, 0}};
        if (::poll(waits, 2, -1) < 0)
            continue;
        if (waits[0].revents)
            return;
        if (waits[1].revents & (POLLERR | POLLHUP | POLLNVAL)) {
            // Refusing: nothing more to accept, only the end to wait for.
            pollfd end{m_wakeUp[0], POLLIN, 0};
            ::poll(&end, 1, -1);
            return;
        }
        const int fd = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0)
            continue;
        ++m_connections;
        serveConnection(fd);
        ::close(fd);
    }
}

// Reads print data and answers status requests until the sender closes,
// the behaviour says to hang up, or the emulator ends.
void PrinterEmulator::serveConnection(int fd)
{
    QByteArray pending; // a status request cut between two reads
    std::uint64_t taken = 0;
    for (;;) {
        Behaviour behaviour;
        std::uint64_t hangUpAfter;
        {
            const std::lock_guard lock(m_mutex);
            behaviour = m_behaviour;
            hangUpAfter = m_hangUpAfter;
        }
        pollfd waits[2] = {{m_wakeUp[0], POLLIN, 0}, {fd, short(behaviour == Behaviour::Stall ? 0 : POLLIN), 0}};
        if (::poll(waits, 2, -1) < 0)
            continue;
        if (waits[0].revents)
            return;
        char buffer[64 << 10];
        std::uint64_t room = sizeof buffer;
        if (behaviour == Behaviour::HangUpAfter)
            room = std::min(room, hangUpAfter - taken);
        const ssize_t n = room == 0 ? 0 : ::read(fd, buffer, room);
        if (n <= 0)
            return;
        taken += std::uint64_t(n);
        pending.append(buffer, n);
        QByteArray answers;
        {
            const std::lock_guard lock(m_mutex);
            qsizetype start = 0;
            for (qsizetype at; (at = pending.indexOf("\x10\x04", start)) >= 0 && at + 2 < pending.size();) {
                m_received.append(pending.constData() + start, at - start);
                const int which = pending.at(at + 2) == 1 ? 0 : pending.at(at + 2) == 2 ? 1 : 2;
                if (m_answers)
                    answers.append(char(m_status[which]));
                start = at + 3;
            }
            // Keep a DLE, or DLE EOT, at the end for the next read.
            qsizetype keep = pending.endsWith("\x10\x04") ? 2 : pending.endsWith('\x10') ? 1 : 0;
            keep = std::min(keep, pending.size() - start);
            m_received.append(pending.constData() + start, pending.size() - start - keep);
            pending = pending.right(keep);
        }
        if (!answers.isEmpty() && ::send(fd, answers.constData(), size_t(answers.size()), MSG_NOSIGNAL) < 0)
            return;
        if (behaviour == Behaviour::HangUpAfter && taken >= hangUpAfter)
            return;
    }
}

} // namespace testsupport

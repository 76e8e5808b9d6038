// The transports that are a file descriptor: a path (device, serial port,
// FIFO, file), a raw TCP connection and standard output. Each waits for the
// other end with poll, so that no wait outlasts the timeout.

#include "transports.h"

#include <QFileInfo>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/sockios.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace delivery {

namespace {

using Clock = std::chrono::steady_clock;

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

QString seconds(Milliseconds timeout)
{
    return QString::number(double(timeout.count()) / 1000.0) + " s"_L1;
}

// Waits for `events` on `fd` until `deadline`; false on a timeout.
bool waitFor(int fd, short events, Clock::time_point deadline)
{
    for (;;) {
        const auto left = std::chrono::duration_cast<Milliseconds>(deadline - Clock::now());
        pollfd entry{fd, events, 0};
        const int ready = ::poll(&entry, 1, int(std::max<Milliseconds::rep>(left.count(), 0)));
        if (ready > 0)
            return true;
        if (ready == 0 || errno != EINTR)
            return false;
    }
}

class FdDestination : public Destination
{
public:
    ~FdDestination() override
    {
        if (m_fd >= 0 && m_ownsFd)
            ::close(m_fd);
    }

    Written write(const char* data, std::uint64_t length, Milliseconds timeout) override
    {
        Written written;
        while (written.bytes < length) {
            const ssize_t n = writeSome(data + written.bytes, length - written.bytes);
            if (n > 0) {
                written.bytes += std::uint64_t(n);
                continue;
            }
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
                if (!waitFor(m_fd, POLLOUT, Clock::now() + timeout)) {
                    fail("it took no data for "_L1 + seconds(timeout));
                    return written;
                }
                continue;
            }
            fail(n == 0 ? u"it took no data"_s : systemError(errno));
            return written;
        }
        written.complete = true;
        return written;
    }

    // Sends each request and reads its one-byte answer; an answer that
    // does not come within `timeout` in all is no status.
    std::optional<PrinterStatus> status(Milliseconds timeout) override
    {
        if (!m_answers) {
            fail(u"it cannot answer"_s);
            return std::nullopt;
        }
        drainInput();
        const Clock::time_point deadline = Clock::now() + timeout;
        std::uint8_t answers[3];
        for (int i = 0; i < 3; ++i) {
            const QByteArray& request = statusRequests[i];
            if (!write(request.constData(), std::uint64_t(request.size()), timeout).complete)
                return std::nullopt;
            if (!waitFor(m_fd, POLLIN, deadline)) {
                fail("no answer within "_L1 + seconds(timeout));
                return std::nullopt;
            }
            const ssize_t n = ::read(m_fd, &answers[i], 1);
            if (n != 1) {
                fail(n == 0 ? u"it closed the connection"_s : systemError(errno));
                return std::nullopt;
            }
        }
        const std::optional<PrinterStatus> status = PrinterStatus::fromAnswers(answers[0], answers[1], answers[2]);
        if (!status)
            fail(u"its answer is no status"_s);
        return status;
    }

    bool close(Milliseconds) override
    {
        if (m_fd < 0 || !m_ownsFd)
            return true;
        const int fd = std::exchange(m_fd, -1);
        if (::close(fd) != 0 && errno != EINTR)
            return fail(systemError(errno));
        return true;
    }

protected:
    explicit FdDestination(const QString& name)
        : Destination(name)
    {
    }

    virtual ssize_t writeSome(const char* data, std::uint64_t length) { return ::write(m_fd, data, length); }

    // Answers to an earlier request that came too late are not this one's.
    void drainInput()
    {
        char stale[64];
        while (waitFor(m_fd, POLLIN, Clock::now()) && ::read(m_fd, stale, sizeof stale) > 0) {
        }
    }

    int m_fd = -1;
    bool m_ownsFd = true;
    bool m_answers = false; // whether the printer can be read from
};

// A device, serial port, FIFO or file. Opened without blocking, so that a
// FIFO with no reader or a device that hangs cannot stop the program: a
// FIFO is tried again until the timeout for a reader to come.
class PathDestination : public FdDestination
{
public:
    explicit PathDestination(const QString& path)
        : FdDestination(path)
    {
    }

    bool open(Milliseconds timeout, const QString&) override
    {
        const QByteArray path = QFile::encodeName(name());
        struct stat info{};
        const bool device = ::stat(path.constData(), &info) == 0 && S_ISCHR(info.st_mode);
        const Clock::time_point deadline = Clock::now() + timeout;
        for (;;) {
            // A printer on a character device may answer status requests.
            if (device)
                m_fd = ::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
            if (m_fd < 0)
                m_fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC | O_NOCTTY,
                              0666);
            if (m_fd >= 0) {
                m_answers = device && (::fcntl(m_fd, F_GETFL) & O_ACCMODE) == O_RDWR;
                return true;
            }
            if (errno != ENXIO || Clock::now() >= deadline)
                break;
            std::this_thread::sleep_for(Milliseconds(50));
        }
        if (errno == ENXIO)
            return fail("nothing read from it within "_L1 + seconds(timeout));
        return fail(systemError(errno));
    }
};

// Standard output as the program found it: neither reopened nor closed,
// and left blocking, since other processes may share it.
class StandardOutput : public FdDestination
{
public:
    StandardOutput()
        : FdDestination(u"standard output"_s)
    {
        m_fd = STDOUT_FILENO;
        m_ownsFd = false;
    }

    bool open(Milliseconds, const QString&) override
    {
        if (::fcntl(m_fd, F_GETFL) < 0)
            return fail(u"it is closed"_s);
        return true;
    }
};

// A printer that takes raw TCP, as network receipt printers do on port
// 9100. Writing to it never raises SIGPIPE; closing waits until the
// printer has acknowledged every byte.
class SocketDestination : public FdDestination
{
public:
    SocketDestination(const QString& name, const QString& host, quint16 port)
        : FdDestination(name), m_host(host), m_port(port)
    {
    }

    bool open(Milliseconds timeout, const QString&) override
    {
        addrinfo hints{};
        hints.ai_family = AF_UNSPEC;
        hints.ai_socktype = SOCK_STREAM;
        hints.ai_flags = AI_ADDRCONFIG;
        addrinfo* addresses = nullptr;
        const int lookup = ::getaddrinfo(m_host.toUtf8().constData(), QByteArray::number(m_port).constData(),
                                         &hints, &addresses);
        if (lookup != 0)
            return fail("cannot find "_L1 + m_host + ": "_L1 + QString::fromLocal8Bit(::gai_strerror(lookup)));
        const Clock::time_point deadline = Clock::now() + timeout;
        QString error;
        for (const addrinfo* address = addresses; address && m_fd < 0; address = address->ai_next) {
            if (!connectTo(address, deadline, &error)) {
                if (m_fd >= 0)
                    ::close(std::exchange(m_fd, -1));
            }
        }
        ::freeaddrinfo(addresses);
        if (m_fd < 0)
            return fail(error);
        m_answers = true;
        return true;
    }

    bool close(Milliseconds timeout) override
    {
        if (m_fd < 0)
            return true;
        // The kernel took the bytes; the printer has them once it has
        // acknowledged them all.
        const Clock::time_point deadline = Clock::now() + timeout;
        int unacknowledged = 0;
        while (::ioctl(m_fd, SIOCOUTQ, &unacknowledged) == 0 && unacknowledged > 0) {
            if (Clock::now() >= deadline) {
                ::close(std::exchange(m_fd, -1));
                return fail(QString::number(unacknowledged) + " bytes not taken within "_L1 + seconds(timeout));
            }
            std::this_thread::sleep_for(Milliseconds(2));
        }
        ::shutdown(m_fd, SHUT_WR);
        return FdDestination::close(timeout);
    }

    // What the kernel took but the printer has not acknowledged has not
    // reached it.
    Written write(const char* data, std::uint64_t length, Milliseconds timeout) override
    {
        Written written = FdDestination::write(data, length, timeout);
        int unacknowledged = 0;
        if (!written.complete && ::ioctl(m_fd, SIOCOUTQ, &unacknowledged) == 0)
            written.bytes -= std::min<std::uint64_t>(written.bytes, std::uint64_t(unacknowledged));
        return written;
    }

protected:
    ssize_t writeSome(const char* data, std::uint64_t length) override
    {
        return ::send(m_fd, data, length, MSG_NOSIGNAL);
    }

private:
    bool connectTo(const addrinfo* address, Clock::time_point deadline, QString* error)
    {
        m_fd = ::socket(address->ai_family, address->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                        address->ai_protocol);
        if (m_fd < 0) {
            *error = systemError(errno);
            return false;
        }
        if (::connect(m_fd, address->ai_addr, address->ai_addrlen) != 0 && errno != EINPROGRESS) {
            *error = systemError(errno);
            return false;
        }
        if (!waitFor(m_fd, POLLOUT, deadline)) {
            *error = u"no answer within the timeout"_s;
            return false;
        }
        int result = 0;
        socklen_t size = sizeof result;
        if (::getsockopt(m_fd, SOL_SOCKET, SO_ERROR, &result, &size) != 0 || result != 0) {
            *error = systemError(result ? result : errno);
            return false;
        }
        return true;
    }

    QString m_host;
    quint16 m_port;
};

} // namespace

std::unique_ptr<Destination> pathDestination(const QString& path)
{
    return std::make_unique<PathDestination>(path);
}

std::unique_ptr<Destination> standardOutput()
{
    return std::make_unique<StandardOutput>();
}

std::unique_ptr<Destination> socketDestination(const QString& name, const QString& host, quint16 port)
{
    return std::make_unique<SocketDestination>(name, host, port);
}

} // namespace delivery

// A raw job on a CUPS queue: the bytes go to the scheduler unchanged, which
// spools them and hands them to the queue's printer. The scheduler is the
// one libcups finds (CUPS_SERVER, the client configuration, the local
// scheduler).

#include "transports.h"

#include <cups/cups.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace delivery {

namespace {

using Clock = std::chrono::steady_clock;

QString cupsError()
{
    return QString::fromUtf8(cupsLastErrorString());
}

// libcups asks this when a request has waited its timeout: 0 gives up.
int giveUp(http_t*, void*)
{
    return 0;
}

class CupsQueue : public Destination
{
public:
    CupsQueue(const QString& name, const QString& queue)
        : Destination(name), m_queue(queue.toUtf8())
    {
    }

    ~CupsQueue() override
    {
        if (m_http)
            httpClose(m_http);
    }

    bool isQueue() const override { return true; }

    bool open(Milliseconds timeout, const QString& title) override
    {
        m_http = httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1,
                              int(timeout.count()), nullptr);
        if (!m_http)
            return fail("cannot reach the CUPS scheduler at "_L1 + QString::fromUtf8(cupsServer()) + ": "_L1
                        + cupsError());
        httpSetTimeout(m_http, double(timeout.count()) / 1000.0, giveUp, nullptr);
        cups_dest_t* queue = cupsGetNamedDest(m_http, m_queue.constData(), nullptr);
        if (!queue)
            return fail("no CUPS queue named "_L1 + QString::fromUtf8(m_queue));
        cupsFreeDests(1, queue);

        const QByteArray jobTitle = title.toUtf8();
        m_job = cupsCreateJob(m_http, m_queue.constData(), jobTitle.constData(), 0, nullptr);
        if (m_job == 0)
            return fail(cupsError());
        if (cupsStartDocument(m_http, m_queue.constData(), m_job, jobTitle.constData(), CUPS_FORMAT_RAW, 1)
            != HTTP_STATUS_CONTINUE)
            return fail(cupsError());
        return true;
    }

    Written write(const char* data, std::uint64_t length, Milliseconds) override
    {
        if (cupsWriteRequestData(m_http, data, length) != HTTP_STATUS_CONTINUE) {
            fail(cupsError());
            return {};
        }
        return {length, true};
    }

    bool close(Milliseconds) override
    {
        if (cupsFinishDocument(m_http, m_queue.constData()) != IPP_STATUS_OK)
            return fail(cupsError());
        return true;
    }

    QString jobReport() const override
    {
        return "job "_L1 + QString::fromUtf8(m_queue) + u'-' + QString::number(m_job);
    }

    // Asks the job's state until it is final, for at most `timeout`: a
    // job whose printer cannot be reached would otherwise be waited on for
    // as long as the scheduler tries (a week by default). A queue the
    // scheduler has stopped ends the wait at once.
    bool waitForJob(Milliseconds timeout, QString* state) override
    {
        const Clock::time_point deadline = Clock::now() + timeout;
        for (;;) {
            const int job = askJobState();
            switch (job) {
            case IPP_JSTATE_COMPLETED:
                *state = u"completed"_s;
                return true;
            case IPP_JSTATE_CANCELED:
                *state = u"cancelled"_s;
                return false;
            case IPP_JSTATE_ABORTED:
                *state = u"aborted"_s;
                return false;
            case IPP_JSTATE_STOPPED:
                *state = u"stopped"_s;
                return false;
            case 0:
                *state = "unknown ("_L1 + cupsError() + u')';
                return false;
            default:
                break;
            }
            const Queue queue = askQueue();
            if (queue.stopped) {
                *state = "stopped with its queue ("_L1 + queue.message + u')';
                return false;
            }
            if (Clock::now() >= deadline) {
                *state = (job == IPP_JSTATE_PROCESSING ? "still printing after "_L1 : "still waiting after "_L1)
                         + QString::number(timeout.count() / 1000) + " s ("_L1 + queue.message + u')';
                return false;
            }
            std::this_thread::sleep_for(Milliseconds(100));
        }
    }

private:
    struct Queue
    {
        bool stopped = false;
        QString message;
    };

    // An IPP request about the queue, or one of its jobs, asking for
    // `attributes`; the response, which the caller deletes.
    ipp_t* ask(ipp_op_t operation, int job, std::initializer_list<const char*> attributes)
    {
        ipp_t* request = ippNewRequest(operation);
        char uri[HTTP_MAX_URI];
        httpAssembleURIf(HTTP_URI_CODING_ALL, uri, sizeof uri, "ipp", nullptr, "localhost", 0, "/printers/%s",
                         m_queue.constData());
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri);
        if (job != 0)
            ippAddInteger(request, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", job);
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
        ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", int(attributes.size()),
                      nullptr, attributes.begin());
        return cupsDoRequest(m_http, request, job != 0 ? "/jobs/" : "/");
    }

    int askJobState()
    {
        ipp_t* response = ask(IPP_OP_GET_JOB_ATTRIBUTES, m_job, {"job-state"});
        ipp_attribute_t* found = ippFindAttribute(response, "job-state", IPP_TAG_ENUM);
        const int state = found ? ippGetInteger(found, 0) : 0;
        ippDelete(response);
        return state;
    }

    Queue askQueue()
    {
        ipp_t* response = ask(IPP_OP_GET_PRINTER_ATTRIBUTES, 0,
                              {"printer-state", "printer-state-message"});
        Queue queue;
        if (ipp_attribute_t* state = ippFindAttribute(response, "printer-state", IPP_TAG_ENUM))
            queue.stopped = ippGetInteger(state, 0) == IPP_PSTATE_STOPPED;
        if (ipp_attribute_t* message = ippFindAttribute(response, "printer-state-message", IPP_TAG_TEXT))
            queue.message = QString::fromUtf8(ippGetString(message, 0, nullptr));
        ippDelete(response);
        return queue;
    }

    QByteArray m_queue;
    http_t* m_http = nullptr;
    int m_job = 0;
};

} // namespace

std::unique_ptr<Destination> cupsQueue(const QString& name, const QString& queue)
{
    return std::make_unique<CupsQueue>(name, queue);
}

} // namespace delivery

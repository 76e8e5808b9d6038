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

    // Asks the job's state until it is final. A job waiting on a queue the
    // scheduler has stopped goes nowhere until someone starts the queue
    // again: that is reported as the end of the wait too.
    bool waitForJob(QString* state) override
    {
        for (;;) {
            const ipp_jstate_t job = jobState();
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
            default:
                break;
            }
            if (int(job) == 0) {
                *state = "unknown ("_L1 + cupsError() + u')';
                return false;
            }
            if (queueStopped()) {
                *state = u"stopped (the queue is stopped)"_s;
                return false;
            }
            std::this_thread::sleep_for(Milliseconds(100));
        }
    }

private:
    // Asks for one attribute with an IPP request; its value, or 0.
    int askEnum(ipp_op_t operation, bool ofJob, const char* attribute)
    {
        ipp_t* request = ippNewRequest(operation);
        char uri[HTTP_MAX_URI];
        httpAssembleURIf(HTTP_URI_CODING_ALL, uri, sizeof uri, "ipp", nullptr, "localhost", 0, "/printers/%s",
                         m_queue.constData());
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri);
        if (ofJob)
            ippAddInteger(request, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", m_job);
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", nullptr, attribute);
        ipp_t* response = cupsDoRequest(m_http, request, ofJob ? "/jobs/" : "/");
        int value = 0;
        if (ipp_attribute_t* found = ippFindAttribute(response, attribute, IPP_TAG_ENUM))
            value = ippGetInteger(found, 0);
        ippDelete(response);
        return value;
    }

    ipp_jstate_t jobState() { return ipp_jstate_t(askEnum(IPP_OP_GET_JOB_ATTRIBUTES, true, "job-state")); }

    bool queueStopped()
    {
        return askEnum(IPP_OP_GET_PRINTER_ATTRIBUTES, false, "printer-state") == IPP_PSTATE_STOPPED;
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

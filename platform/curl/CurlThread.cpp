#include "platform/curl/CurlThread.h"

#include "platform/curl/CurlTransfer.h"

#include <algorithm>
#include <csignal>
#include <utility>

namespace lumaro {

namespace {

constexpr long openConnections = 16;

CURLM *makeMulti()
{
    // Once in a process, before any other thread uses it.
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    Q_UNUSED(initialised);
    // What OpenSSL writes to a connection that the server has closed must not end the process.
    static const auto previous = std::signal(SIGPIPE, SIG_IGN);
    Q_UNUSED(previous);
    CURLM *const multi = curl_multi_init();
    curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, openConnections);
    return multi;
}

} // namespace

CurlThread::CurlThread(Finished finished)
    : m_finished(std::move(finished))
    , m_multi(makeMulti(), &curl_multi_cleanup)
{
}

std::shared_ptr<CurlThread> CurlThread::begin(Finished finished)
{
    const std::shared_ptr<CurlThread> self(new CurlThread(std::move(finished)));
    self->m_thread = std::thread([self] {
        self->run();
        self->m_ended.release();
    });
    return self;
}

void CurlThread::quit()
{
    m_quit = true;
    curl_multi_wakeup(m_multi.get());
}

void CurlThread::end(Clock::time_point deadline)
{
    if (m_ended.try_acquire_until(deadline)) {
        m_thread.join();
        return;
    }
    m_thread.detach();
    const std::scoped_lock lock(m_finishedMutex);
    m_finished = nullptr;
}

void CurlThread::start(quint64 id, HttpRequest request, HttpBodySink sink,
                       std::optional<ProxyConfiguration> proxy)
{
    post(
        [this, id, request = std::move(request), sink = std::move(sink), proxy = std::move(proxy)] {
            auto transfer = std::make_unique<CurlTransfer>(id, request, sink, proxy);
            if (const auto prepared = transfer->prepare(); !prepared)
                return report(id, std::unexpected(prepared.error()));
            curl_multi_add_handle(m_multi.get(), transfer->easy());
            m_transfers.emplace(id, std::move(transfer));
        });
}

void CurlThread::cancel(quint64 id)
{
    post([this, id] { finish(id, std::unexpected(HttpError{HttpError::Kind::Cancelled})); });
}

void CurlThread::post(Command command)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_commands.push_back(std::move(command));
    }
    curl_multi_wakeup(m_multi.get());
}

void CurlThread::run()
{
    while (!m_quit) {
        obeyCommands();
        int running = 0;
        curl_multi_perform(m_multi.get(), &running);
        finishEnded();
        finishSilent();
        curl_multi_poll(m_multi.get(), nullptr, 0, int(untilNextDeadline().count()), nullptr);
    }
    for (const auto &[id, transfer] : m_transfers)
        curl_multi_remove_handle(m_multi.get(), transfer->easy());
    m_transfers.clear();
}

void CurlThread::obeyCommands()
{
    std::vector<Command> commands;
    {
        const std::scoped_lock lock(m_mutex);
        commands.swap(m_commands);
    }
    for (const Command &command : commands)
        command();
}

void CurlThread::finishEnded()
{
    int left = 0;
    while (const CURLMsg *message = curl_multi_info_read(m_multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        // The message goes with the handle.
        const CURLcode code = message->data.result;
        proceed(CurlTransfer::idOf(message->easy_handle), code);
    }
}

void CurlThread::finishSilent()
{
    const auto now = CurlTransfer::Clock::now();
    std::vector<quint64> silent;
    for (const auto &[id, transfer] : m_transfers) {
        if (transfer->deadline() <= now)
            silent.push_back(id);
    }
    for (const quint64 id : silent) {
        if (m_transfers.at(id)->isRedirect())
            proceed(id, CURLE_OPERATION_TIMEDOUT);
        else
            finish(id, std::unexpected(HttpError{HttpError::Kind::TimedOut}));
    }
}

void CurlThread::proceed(quint64 id, CURLcode code)
{
    CurlTransfer &transfer = *m_transfers.at(id);
    if (!transfer.isRedirect())
        return finish(id, transfer.result(code));

    curl_multi_remove_handle(m_multi.get(), transfer.easy());
    if (const auto followed = transfer.follow(); !followed)
        return finish(id, std::unexpected(followed.error()));
    curl_multi_add_handle(m_multi.get(), transfer.easy());
}

void CurlThread::finish(quint64 id, std::expected<HttpResponse, HttpError> result)
{
    if (const auto ended = m_transfers.extract(id)) {
        curl_multi_remove_handle(m_multi.get(), ended.mapped()->easy());
        report(id, std::move(result));
    }
}

void CurlThread::report(quint64 id, std::expected<HttpResponse, HttpError> result)
{
    const std::scoped_lock lock(m_finishedMutex);
    if (m_finished)
        m_finished(id, std::move(result));
}

std::chrono::milliseconds CurlThread::untilNextDeadline() const
{
    using namespace std::chrono_literals;

    std::chrono::milliseconds shortest = 1min;
    const auto now = CurlTransfer::Clock::now();
    for (const auto &[id, transfer] : m_transfers)
        shortest = std::min(shortest, ceil<std::chrono::milliseconds>(transfer->deadline() - now));
    return std::max(shortest, 0ms);
}

} // namespace lumaro

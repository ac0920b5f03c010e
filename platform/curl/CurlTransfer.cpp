#include "platform/curl/CurlTransfer.h"

#include <algorithm>
#include <utility>

namespace lumaro {

namespace {

constexpr int maximumRedirects = 10;

/// A redirect's own body is nothing to wait for; up to this size it is read all the same, because
/// the connection can then be used again.
constexpr qint64 maximumRedirectBody = 64 * 1024;
constexpr std::chrono::seconds redirectPatience{1};

constexpr long receiveBufferSize = 128 * 1024;

bool isHttp(const QUrl &url)
{
    return (url.scheme() == u"http" || url.scheme() == u"https") && !url.host().isEmpty();
}

HttpError::Kind errorKind(CURLcode code)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_PROXY:
        return HttpError::Kind::Unreachable;
    case CURLE_OPERATION_TIMEDOUT:
        return HttpError::Kind::TimedOut;
    case CURLE_FILESIZE_EXCEEDED:
        return HttpError::Kind::TooLarge;
    case CURLE_URL_MALFORMAT:
        return HttpError::Kind::UnsupportedAddress;
    default:
        return HttpError::Kind::Broken;
    }
}

} // namespace

CurlTransfer::CurlTransfer(quint64 id, HttpRequest request, HttpBodySink sink,
                           std::optional<ProxyConfiguration> proxy)
    : m_id(id)
    , m_request(std::move(request))
    , m_sink(std::move(sink))
    , m_proxy(std::move(proxy))
    , m_easy(curl_easy_init(), &curl_easy_cleanup)
{
}

quint64 CurlTransfer::idOf(CURL *easy)
{
    void *self = nullptr;
    curl_easy_getinfo(easy, CURLINFO_PRIVATE, &self);
    return static_cast<CurlTransfer *>(self)->m_id;
}

std::expected<void, HttpError> CurlTransfer::prepare()
{
    if (!isHttp(m_request.url))
        return std::unexpected(HttpError{HttpError::Kind::UnsupportedAddress});

    const auto set = [this](CURLoption option, auto value) {
        curl_easy_setopt(m_easy.get(), option, value);
    };
    // Forgets the answer before; keeps connections.
    curl_easy_reset(m_easy.get());
    const QByteArray address = m_request.url.toEncoded(QUrl::FullyEncoded | QUrl::RemoveFragment);
    set(CURLOPT_URL, address.constData());
    set(CURLOPT_PRIVATE, this);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_USERAGENT, m_request.userAgent.constData());
    // Whatever this libcurl can decode. What is streamed comes as it is: libcurl does not notice
    // when a coded body ends too early.
    if (!m_sink)
        set(CURLOPT_ACCEPT_ENCODING, "");
    set(CURLOPT_NOSIGNAL, 1L);
    // Who gives up while a name is looked up does not wait for the resolver, which may take long.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_BUFFERSIZE, receiveBufferSize);
    set(CURLOPT_MAXFILESIZE_LARGE, curl_off_t(m_request.maximumBodySize));
    set(CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
    set(CURLOPT_HEADERDATA, this);
    if (m_proxy)
        setProxy();
    m_lastSign = Clock::now();
    m_received = 0;
    return {};
}

void CurlTransfer::setProxy()
{
    using Protocol = ProxyConfiguration::Protocol;
    const auto set = [this](CURLoption option, auto value) {
        curl_easy_setopt(m_easy.get(), option, value);
    };
    const QString &host = m_proxy->host;
    const QString proxy = host.contains(u':') ? u'[' + host + u']' : host;
    set(CURLOPT_PROXY, proxy.toUtf8().constData());
    set(CURLOPT_PROXYPORT, long(m_proxy->port));
    // Names are for the proxy to find.
    set(CURLOPT_PROXYTYPE,
        long(m_proxy->protocol == Protocol::Socks5 ? CURLPROXY_SOCKS5_HOSTNAME : CURLPROXY_HTTP));
    // What runs on this machine is not for a proxy.
    set(CURLOPT_NOPROXY, "localhost,127.0.0.1,::1");
    if (m_proxy->credential) {
        set(CURLOPT_PROXYUSERNAME, m_proxy->credential->username.toUtf8().constData());
        set(CURLOPT_PROXYPASSWORD, m_proxy->credential->password.toUtf8().constData());
    }
}

CurlTransfer::Clock::time_point CurlTransfer::deadline() const
{
    return m_lastSign
        + (isRedirect() ? std::min<Clock::duration>(redirectPatience, m_request.patience)
                        : m_request.patience);
}

bool CurlTransfer::isRedirect() const
{
    return !m_refusal && status() / 100 == 3 && location();
}

std::expected<void, HttpError> CurlTransfer::follow()
{
    if (++m_redirects > maximumRedirects)
        return std::unexpected(HttpError{HttpError::Kind::TooManyRedirects});
    const QUrl target = m_request.url.resolved(QUrl::fromEncoded(*location()));
    if (m_request.url.scheme() == u"https" && target.scheme() == u"http")
        return std::unexpected(HttpError{HttpError::Kind::UnsupportedAddress});
    m_request.url = target;
    return prepare();
}

std::expected<HttpResponse, HttpError> CurlTransfer::result(CURLcode code)
{
    if (m_refusal)
        return std::unexpected(HttpError{*m_refusal});
    const bool wasCutOff = code == CURLE_WRITE_ERROR && isUnwanted();
    if (code != CURLE_OK && !wasCutOff)
        return std::unexpected(HttpError{errorKind(code)});
    return HttpResponse{status(), m_request.url, std::move(m_body)};
}

size_t CurlTransfer::onBody(char *bytes, size_t size, size_t count, void *transfer)
{
    const QByteArrayView piece(bytes, qsizetype(size * count));
    return static_cast<CurlTransfer *>(transfer)->take(piece) ? size * count : 0;
}

size_t CurlTransfer::onHeader(char *, size_t size, size_t count, void *transfer)
{
    static_cast<CurlTransfer *>(transfer)->m_lastSign = Clock::now();
    return size * count;
}

bool CurlTransfer::take(QByteArrayView bytes)
{
    m_received += bytes.size();
    // Its body is no sign of life.
    if (isRedirect())
        return m_received <= maximumRedirectBody;
    m_lastSign = Clock::now();
    if (isUnwanted())
        return false;
    if (m_received > m_request.maximumBodySize) {
        m_refusal = HttpError::Kind::TooLarge;
    } else if (!m_sink) {
        m_body.append(bytes);
    } else if (!m_sink(bytes)) {
        m_refusal = HttpError::Kind::NotTaken;
    } else {
        // The server is not to blame for the time that the sink took.
        m_lastSign = Clock::now();
    }
    return !m_refusal;
}

bool CurlTransfer::isUnwanted() const
{
    return m_sink && status() / 100 != 2;
}

int CurlTransfer::status() const
{
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    return int(status);
}

std::optional<QByteArray> CurlTransfer::location() const
{
    curl_header *header = nullptr;
    if (curl_easy_header(m_easy.get(), "Location", 0, CURLH_HEADER, -1, &header) != CURLHE_OK)
        return std::nullopt;
    return QByteArray(header->value);
}

} // namespace lumaro

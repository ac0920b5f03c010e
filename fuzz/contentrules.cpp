// Compiles any bytes as content rules, and decides addresses by them: with and without the index
// that spares looking at every rule.

#include "platform/contentrules/ContentRule.h"
#include "platform/contentrules/RuleMatcher.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

using namespace lumaro;
using namespace lumaro::contentrules;

namespace {

const std::array requests{
    ContentRequest{QUrl(QStringLiteral("https://Ads.Example.com/PageAd/x.js?a=1.b")),
                   QUrl(QStringLiteral("https://www.example.com/")), ResourceType::Script},
    ContentRequest{QUrl(QStringLiteral("http://a.b.co.uk/aab/./b.a")),
                   QUrl(QStringLiteral("http://other.net")), ResourceType::Image},
    ContentRequest{QUrl(QStringLiteral("wss://[::1]:80/")), QUrl(), ResourceType::WebSocket},
    ContentRequest{QUrl(QStringLiteral("https://xn--bcher-kva.example/%C3%BC")), QUrl(),
                   ResourceType::Document},
};

/// What a rule means, read word for word.
bool matches(const ContentRule &rule, const ContentRequest &request)
{
    const QByteArray address = request.url.toEncoded(QUrl::FullyEncoded);
    return rule.condition.holds(RequestFacts(request))
        && std::ranges::any_of(rule.patterns, [&](const UrlPattern &pattern) {
               return pattern.matches(pattern.isCaseSensitive ? address : address.toLower());
           });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto rules =
        readContentRules(QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!rules)
        return 0;
    const RuleMatcher matcher(*rules);
    for (const ContentRequest &request : requests) {
        const bool expected = std::ranges::any_of(
            *rules, [&request](const ContentRule &rule) { return matches(rule, request); });
        if (matcher.matchesAny(request) != expected)
            __builtin_trap();
    }
    return 0;
}

// Deciding requests by 50,000 content rules, as ratios to looking at every rule and to the time of
// a frame.  bench_contentrules

#include "platform/contentrules/CompiledRuleList.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr int ruleCount = 50'000;
constexpr int requestCount = 2'000;
constexpr double frame = 16e6; // nanoseconds

/// What a rule's address contains: two in three a domain, the others part of a path.
QStringList makeTexts(std::mt19937 &random)
{
    const auto word = [&random](unsigned shortest) {
        QString text;
        for (unsigned length = shortest + random() % 8; length > 0; --length)
            text += QChar(char16_t(u'a' + random() % 26));
        return text;
    };
    QStringList texts;
    for (int i = 0; i < ruleCount; ++i)
        texts.append(i % 3 == 0 ? QString(u'/' + word(4) + u'/')
                                : QString(word(5) + u'.' + word(2)));
    return texts;
}

QString makeSource(const QStringList &texts)
{
    QStringList rules;
    for (QString text : texts) {
        rules.append(u"{\"trigger\":{\"url-filter\":\""
                     + text.replace(u'.', QLatin1StringView("\\\\."))
                     + u"\",\"load-type\":[\"third-party\"]},\"action\":{\"type\":\"block\"}}");
    }
    return u'[' + rules.join(u',') + u']';
}

std::vector<ContentRequest> makeRequests(const QStringList &texts, std::mt19937 &random)
{
    const auto word = [&random] { return QString::number(random(), 36); };
    std::vector<ContentRequest> requests;
    for (int i = 0; i < requestCount; ++i) {
        // One in ten is an advertisement.
        const QString host = i % 10 == 0 ? texts[qsizetype(random() % ruleCount) / 3 * 3 + 1]
                                         : QString(word() + u".example");
        requests.push_back({QUrl(u"https://cdn." + host + u'/' + word() + u'/' + word() + u'/'
                                 + word() + u".js?v=" + word()),
                            QUrl(u"https://page.tv/watch"_s), ResourceType::Script});
    }
    return requests;
}

/// The value that `share` of all do not exceed.
double quantile(std::vector<double> values, double share)
{
    std::ranges::sort(values);
    return values[size_t(double(values.size() - 1) * share)];
}

double medianOf(const std::vector<double> &values)
{
    return quantile(values, 0.5);
}

} // namespace

int main()
{
    std::mt19937 random(1);
    const QStringList texts = makeTexts(random);
    const std::vector<ContentRequest> requests = makeRequests(texts, random);
    const QString source = makeSource(texts);

    QElapsedTimer clock;
    clock.start();
    const auto compiled = CompiledRuleList::compile(source);
    const auto compileTime = double(clock.nsecsElapsed());
    if (!compiled)
        return 2;

    QByteArrayList plainTexts;
    for (const QString &text : texts)
        plainTexts.append(text.toLatin1());
    std::vector<double> indexed;
    std::vector<double> linear;
    int blocked = 0;
    int expected = 0;
    for (const ContentRequest &request : requests) {
        clock.restart();
        blocked += compiled->list->blocks(request);
        indexed.push_back(double(clock.nsecsElapsed()));
        clock.restart();
        const QByteArray address = request.url.toEncoded().toLower();
        expected += std::ranges::any_of(
            plainTexts, [&address](const QByteArray &text) { return address.contains(text); });
        linear.push_back(double(clock.nsecsElapsed()));
    }
    std::printf("%d rules, %d requests, %d blocked\n", ruleCount, requestCount, blocked);
    std::printf("every rule / indexed, median:  %.0f\n", medianOf(linear) / medianOf(indexed));
    std::printf("indexed / frame, median:       %.5f\n", medianOf(indexed) / frame);
    std::printf("indexed / frame, 99 in 100:    %.5f\n", quantile(indexed, 0.99) / frame);
    std::printf("compiling / frame:             %.0f (in the background)\n", compileTime / frame);
    const bool holds = blocked == expected && medianOf(linear) >= 100 * medianOf(indexed);
    std::printf("limit (same answers, 100 times as fast as every rule): %s\n",
                holds ? "kept" : "MISSED");
    return holds ? 0 : 1;
}

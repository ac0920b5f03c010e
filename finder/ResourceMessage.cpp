#include "finder/ResourceMessage.h"

#include <algorithm>

namespace lumaro {

namespace {

std::optional<QString> stringValue(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<QString>())
        return std::nullopt;
    return value.toString();
}

bool isTrue(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<bool>() && value.toBool();
}

/// Anything else cannot be a stream that somebody else could play.
bool isWebAddress(const QUrl &url)
{
    return url.isValid() && !url.host().isEmpty()
        && (url.scheme() == u"http" || url.scheme() == u"https");
}

} // namespace

ResourceMessageReader::ResourceMessageReader(Scheduler &scheduler)
    : m_scheduler(scheduler)
    , m_refilled(scheduler.now())
{
}

std::optional<ResourceMessage> ResourceMessageReader::read(QStringView handler,
                                                           const QVariant &body)
{
    if (handler != resourceMessageHandler)
        return std::nullopt;
    const bool isDictionary = body.metaType() == QMetaType::fromType<QVariantMap>();
    const QVariantMap fields = isDictionary ? body.toMap() : QVariantMap();
    const auto address =
        stringValue(isDictionary ? fields.value(QStringLiteral("url")) : body).value_or(QString());
    auto title = stringValue(fields.value(QStringLiteral("title")));
    if (address.size() > maximumAddressLength)
        return std::nullopt;
    const QUrl url(address);
    // What says nothing must not use up what another frame may say.
    if (title)
        title->truncate(maximumTitleLength);
    if (!isWebAddress(url) || !admit(address.size() + (title ? title->size() : 0)))
        return std::nullopt;
    return ResourceMessage{url, title, isTrue(fields.value(QStringLiteral("selected")))};
}

bool ResourceMessageReader::admits(const QUrl &url)
{
    const qsizetype length = url.toString(QUrl::FullyEncoded).size();
    return isWebAddress(url) && length <= maximumAddressLength && admit(length);
}

bool ResourceMessageReader::admit(qsizetype length)
{
    const Scheduler::TimePoint now = m_scheduler.now();
    const std::chrono::duration<double> passed = now - m_refilled;
    m_refilled = now;
    m_budget = std::min(double(burst), m_budget + passed.count() * double(perSecond));
    const auto cost = double(overhead + length);
    if (cost > m_budget)
        return false;
    m_budget -= cost;
    return true;
}

} // namespace lumaro

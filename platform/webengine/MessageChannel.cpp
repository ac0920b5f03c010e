#include "platform/webengine/MessageChannel.h"

#include "platform/BuiltInScript.h"
#include "platform/JsonText.h"

#include <QRandomGenerator>

#include <array>

namespace lumaro {

namespace {

QString newSecret()
{
    std::array<quint32, 8> words{};
    QRandomGenerator::system()->generate(words.begin(), words.end());
    return QString::fromLatin1(
        QByteArray::fromRawData(reinterpret_cast<const char *>(words.data()), sizeof words)
            .toHex());
}

} // namespace

MessageChannel::MessageChannel(QStringList handlers)
    : m_handlers(std::move(handlers))
    , m_secret(newSecret())
{
}

QString MessageChannel::openingScript() const
{
    return builtInCall(QStringLiteral(":/lumaro/webengine/scripts/open-channel.js"),
                       {m_secret, QJsonArray::fromStringList(m_handlers)});
}

QString MessageChannel::closingScript()
{
    return builtInScript(QStringLiteral(":/lumaro/webengine/scripts/close-channel.js"));
}

std::optional<MessageChannel::Message> MessageChannel::read(const QString &consoleMessage) const
{
    if (consoleMessage.size() > maximumLength || !consoleMessage.startsWith(m_secret))
        return std::nullopt;
    const qsizetype end = consoleMessage.indexOf(u'\n');
    const QString handler = consoleMessage.mid(m_secret.size(), end - m_secret.size());
    if (end < 0 || !m_handlers.contains(handler))
        return std::nullopt;
    const QJsonValue body = decodedJson(QStringView(consoleMessage).mid(end + 1).toUtf8());
    if (body.isUndefined())
        return std::nullopt;
    return Message{handler, body.toVariant()};
}

} // namespace lumaro

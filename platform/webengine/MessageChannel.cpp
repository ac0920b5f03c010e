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

MessageChannel::MessageChannel()
    : m_eventName(newSecret())
    , m_secret(newSecret())
{
}

QString MessageChannel::receivingScript() const
{
    return builtInCall(QStringLiteral(":/lumaro/webengine/scripts/receive-messages.js"),
                       {m_eventName, m_secret, maximumLength});
}

QString MessageChannel::openingScript() const
{
    return builtInCall(QStringLiteral(":/lumaro/webengine/scripts/open-channel.js"),
                       {m_eventName, QJsonArray::fromStringList(m_handlers)});
}

QString MessageChannel::pausingScript()
{
    return QStringLiteral("window.pauseAllMedia && window.pauseAllMedia();");
}

QString MessageChannel::closingScript()
{
    return builtInScript(QStringLiteral(":/lumaro/webengine/scripts/close-channel.js"));
}

std::optional<MessageChannel::Message> MessageChannel::read(const QString &consoleMessage) const
{
    const QString start = m_secret + u':';
    if (consoleMessage.size() > start.size() + maximumLength || !consoleMessage.startsWith(start))
        return std::nullopt;
    const qsizetype end = consoleMessage.indexOf(u'\n');
    const QString handler = consoleMessage.mid(start.size(), end - start.size());
    if (end < 0 || !m_handlers.contains(handler))
        return std::nullopt;
    const QJsonValue body = decodedJson(QStringView(consoleMessage).mid(end + 1).toUtf8());
    if (body.isUndefined())
        return std::nullopt;
    return Message{handler, body.toVariant()};
}

std::optional<MessageChannel::Use> MessageChannel::readUse(const QString &consoleMessage) const
{
    if (consoleMessage == m_secret + u"!page")
        return Use::InPage;
    if (consoleMessage == m_secret + u"!frame")
        return Use::InSubFrame;
    return std::nullopt;
}

} // namespace lumaro

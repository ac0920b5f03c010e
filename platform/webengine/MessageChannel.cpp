#include "platform/webengine/MessageChannel.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
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

QString script(const QString &name)
{
    QFile file(u":/lumaro/webengine/scripts/" + name);
    const bool opened = file.open(QIODevice::ReadOnly);
    Q_ASSERT(opened);
    return opened ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

MessageChannel::MessageChannel(QStringList handlers)
    : m_handlers(std::move(handlers))
    , m_secret(newSecret())
{
}

QString MessageChannel::openingScript() const
{
    const QByteArray names =
        QJsonDocument(QJsonArray::fromStringList(m_handlers)).toJson(QJsonDocument::Compact);
    return script(QStringLiteral("open-channel.js")).trimmed() + u"(\"" + m_secret + u"\", "
        + QString::fromUtf8(names) + u");\n";
}

QString MessageChannel::closingScript()
{
    return script(QStringLiteral("close-channel.js"));
}

std::optional<MessageChannel::Message> MessageChannel::read(const QString &consoleMessage) const
{
    if (consoleMessage.size() > maximumLength || !consoleMessage.startsWith(m_secret))
        return std::nullopt;
    const qsizetype end = consoleMessage.indexOf(u'\n');
    const QString handler = consoleMessage.mid(m_secret.size(), end - m_secret.size());
    if (end < 0 || !m_handlers.contains(handler))
        return std::nullopt;
    // A body by itself is no JSON text to Qt.
    const QByteArray json = '[' + QStringView(consoleMessage).mid(end + 1).toUtf8() + ']';
    const QJsonArray values = QJsonDocument::fromJson(json).array();
    if (values.size() != 1)
        return std::nullopt;
    return Message{handler, values.first().toVariant()};
}

} // namespace lumaro

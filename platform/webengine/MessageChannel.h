#pragma once

#include <QStringList>
#include <QVariant>

#include <optional>

namespace lumaro {

/// What the scripts of one web view post to window.webkit.messageHandlers.NAME, from any frame.
/// Main thread.
class MessageChannel
{
public:
    struct Message
    {
        QString handler;
        QVariant body;
    };

    /// In UTF-16 code units; longer messages are dropped.
    static constexpr qsizetype maximumLength = 70'000;

    /// `handlers` are identifiers.
    explicit MessageChannel(QStringList handlers);

    /// Before the scripts that post, in every frame at document start.
    QString openingScript() const;
    /// After them, for the page is not to post anything.
    static QString closingScript();

    /// The message that a line on the page's console is; empty for the page's own.
    std::optional<Message> read(const QString &consoleMessage) const;

private:
    QStringList m_handlers;
    QString m_secret;
};

} // namespace lumaro

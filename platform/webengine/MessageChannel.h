#pragma once

#include <QStringList>
#include <QVariant>

#include <optional>

namespace lumaro {

/// What the scripts of one web view post to window.webkit.messageHandlers.NAME, from any frame.
/// A page that takes pains can post too, for its own frames; it cannot read what others post. Main
/// thread.
class MessageChannel
{
public:
    struct Message
    {
        QString handler;
        QVariant body;
    };

    /// In UTF-16 code units of handler and body; longer messages are dropped.
    static constexpr int maximumLength = 65'536;

    /// Where the user clicked or pressed a key.
    enum class Use { InPage, InSubFrame };

    MessageChannel();

    const QStringList &handlers() const { return m_handlers; }
    /// The names are identifiers.
    void setHandlers(const QStringList &names) { m_handlers = names; }

    /// Before all others, in every frame at document start, in a world of its own.
    QString receivingScript() const;
    /// Before the scripts that post, in every frame at document start, in the page's world.
    QString openingScript() const;
    /// Pauses all media of the page and its frames; to be run in the world of receivingScript().
    static QString pausingScript();
    /// After them, for the page is not to post anything.
    static QString closingScript();

    /// The message that a line on the page's console is; empty for the page's own.
    std::optional<Message> read(const QString &consoleMessage) const;
    /// What a line on the console tells of the user; no page can write such a line.
    std::optional<Use> readUse(const QString &consoleMessage) const;

private:
    QStringList m_handlers;
    QString m_eventName;
    QString m_secret;
};

} // namespace lumaro

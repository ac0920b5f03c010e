#pragma once

#include "platform/Async.h"

#include <QString>
#include <QUrl>

#include <expected>
#include <functional>
#include <memory>

namespace lumaro {

/// What is loaded, as content rules tell it apart.
enum class ResourceType : quint32 {
    Document = 1 << 0,
    Image = 1 << 1,
    StyleSheet = 1 << 2,
    Script = 1 << 3,
    Font = 1 << 4,
    Media = 1 << 5,
    SvgDocument = 1 << 6,
    Raw = 1 << 7, ///< whatever a script fetches, and what fits nowhere else
    Popup = 1 << 8,
    Ping = 1 << 9,
    WebSocket = 1 << 10,
};

/// Something that a web view is about to load.
struct ContentRequest
{
    QUrl url;
    /// The page in the address field.
    QUrl firstParty;
    ResourceType type = ResourceType::Raw;
};

/// Compiled rules on what web views may load and show. Immutable; any thread.
class ContentRuleList
{
public:
    ContentRuleList() = default;
    ContentRuleList(const ContentRuleList &) = delete;
    ContentRuleList &operator=(const ContentRuleList &) = delete;
    virtual ~ContentRuleList() = default;

    virtual bool blocks(const ContentRequest &request) const = 0;

    /// The script (ECMAScript) that hides what the rules hide. For every frame, at document start;
    /// empty when that is nothing.
    virtual QString hidingScript() const = 0;
};

/// Why rules could not be compiled.
struct ContentRuleListError
{
    enum class Kind {
        Cancelled,
        NotAList, ///< no JSON array of objects
        TooLarge,
        BadTrigger,
        BadFilter, ///< the address's regular expression
        BadAction,
        BadSelector,
    };
    Kind kind = Kind::NotAList;
    /// The first wrong rule, counted from 0; -1 when it is none in particular.
    qsizetype rule = -1;

    /// An English sentence for the log.
    QString description() const;

    bool operator==(const ContentRuleListError &) const = default;
};

/// Compiles content rules. Main thread; nothing blocks.
class ContentRuleListStore
{
public:
    /// GCC 12 cannot compile coroutines whose result is an expected pointer itself.
    struct Compiled
    {
        std::shared_ptr<const ContentRuleList> list;
    };
    using Result = std::expected<Compiled, ContentRuleListError>;

    ContentRuleListStore() = default;
    ContentRuleListStore(const ContentRuleListStore &) = delete;
    ContentRuleListStore &operator=(const ContentRuleListStore &) = delete;
    virtual ~ContentRuleListStore() = default;

    /// Makes the text of the rules; called on another thread.
    using Rules = std::function<QString()>;

    /// `rules` makes JSON text in the form of WebKit's content blockers
    /// (https://webkit.org/blog/3476/content-blockers-first-look/); `identifier` names the list in
    /// logs. One wrong rule fails the whole.
    virtual Task<Result> compile(QString identifier, Rules rules, std::stop_token stop) = 0;
};

} // namespace lumaro

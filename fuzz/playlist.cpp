#include "playlist/ChannelIndex.h"
#include "playlist/PlaylistEntryCoding.h"
#include "playlist/PlaylistParser.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace lumaro;

namespace {

void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "Broken promise: %s\n", what);
    std::abort();
}

void checkEntries(const PlaylistEntries &entries)
{
    require(!entries.isEmpty(), "a playlist without entries is an error");
    const QList<PlaylistEntry> list = entries.toList();
    for (const PlaylistEntry &entry : list) {
        require(!entry.name.isEmpty(), "every entry has a name");
        require(entry.url.isValid() && !entry.url.isRelative(), "every address is absolute");
        require(!entry.logoURL || entry.logoURL->isValid(), "a logo's address is one");
        require(!entry.countryCode || entry.countryCode->size() == 2, "codes have two characters");
    }
    require(PlaylistEntries::fromList(list) == entries, "the entries are the same as a list");
    const std::optional<PlaylistEntries> saved = decodeEntries(encodeEntries(entries));
    require(saved && saved->toList() == list, "saved entries are the same again");
}

void checkIndex(const PlaylistEntries &entries)
{
    const ChannelIndex index(entries);
    std::vector<qint32> order = index.order();
    std::ranges::sort(order);
    require(order.size() == size_t(entries.size()), "every entry is in the order");
    for (size_t i = 0; i < order.size(); ++i)
        require(order[i] == qint32(i), "every entry is in the order once");

    qint32 first = 0;
    for (const ChannelIndex::Group &group : index.groups()) {
        require(group.first == first && group.count > 0, "groups follow each other");
        first += group.count;
    }
    require(first == entries.size(), "groups hold all entries");

    // Names may be long and many; a few tell enough.
    for (qsizetype i = 0; i < std::min(entries.size(), qsizetype(4)); ++i) {
        const QString name = ChannelIndex::shown(entries.name(i));
        require(!name.contains(u'\n'), "what is shown is one line");
        // Half a character is nothing that anyone types.
        const qsizetype middle = name.size() / 2;
        const qsizetype start = middle - (middle > 0 && name[middle].isLowSurrogate() ? 1 : 0);
        for (const QString &needle : {name, name.toUpper(), name.mid(start)}) {
            const std::vector<quint8> matches = index.matches(needle);
            require(matches.size() == size_t(entries.size()), "every entry is judged");
            // Upper case may say more than one thing.
            if (needle != name.toUpper() || needle.toCaseFolded() == name.toCaseFolded())
                require(matches[size_t(i)] == 1, "an entry is found by its name");
        }
    }
}

} // namespace

/// The first byte chooses where the playlist was found, the others are the playlist.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QUrl bases[] = {
        QUrl(QStringLiteral("http://host/p/list.m3u")),
        QUrl(QStringLiteral("https://[::1]:8080/get.php?type=m3u_plus#f")),
        QUrl(QStringLiteral("file:///home/u/a%20list.m3u")),
        QUrl(QStringLiteral("http://host")),
    };
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    const auto entries = PlaylistParser::read(bytes, bases[*data % std::size(bases)]);
    if (!entries) {
        require(!description(entries.error()).isEmpty(), "every error has its sentence");
        return 0;
    }
    checkEntries(*entries);
    checkIndex(*entries);
    return 0;
}

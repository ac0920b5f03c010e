// A Local M3U library of 200,000 links, as ratios to the time of a frame, to 300 ms of processor
// time and to a library of 50 links.  bench_library [ROUNDS]

#include "bench/playlist/ChannelList.h"
#include "bench/report/Report.h"
#include "platform/qt/FileUserDefaults.h"
#include "platform/qt/QtScheduler.h"
#include "playlist/LocalM3UHistory.h"
#include "playlist/LocalM3UListModel.h"
#include "playlist/PlaylistEntryCoding.h"
#include "playlist/PlaylistParser.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <ctime>
#include <functional>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr int linkCount = 200'000;
constexpr int fewLinks = 50;
constexpr Seconds frame = std::chrono::milliseconds(16);
constexpr Seconds loadingTime = std::chrono::milliseconds(300);

PlaylistEntries links(int count)
{
    const auto entries = PlaylistParser::read(channelList(count), QUrl(u"http://host/list.m3u"_s));
    return entries.value_or(PlaylistEntries());
}

/// Of all threads of this process.
template <typename Work>
Seconds processorTimeOf(Work work)
{
    const std::clock_t start = std::clock();
    work();
    return Seconds(double(std::clock() - start) / CLOCKS_PER_SEC);
}

/// What the library is stored in and shown by, as in the application.
struct Library
{
    explicit Library(const QString &folder)
        : defaults(folder)
        , store(defaults, scheduler)
        , history(store)
        , list(store, scheduler)
    {
    }

    QtScheduler scheduler;
    FileUserDefaults defaults;
    LocalM3UStore store;
    LocalM3UHistory history;
    LocalM3UListModel list;
};

qint64 storedSize(const QString &folder)
{
    return QFile(folder + u'/' + LocalM3UStore::defaultsKey).size();
}

void handleEvents()
{
    QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
}

/// The longest time that `change` or anything that follows from it holds up the main thread until
/// the changed library is stored.
Seconds longestHold(Library &library, const QString &folder, const std::function<void()> &change)
{
    const qint64 before = storedSize(folder);
    Seconds longest = timeOf(change);
    while (storedSize(folder) == before)
        longest = std::max(longest, timeOf(&handleEvents));
    return library.store.errorMessage().isEmpty() ? longest : Seconds::max();
}

/// The longest time that making the library and showing its list holds up the main thread.
Row starting(const QString &folder, int rounds)
{
    QList<Seconds> times;
    for (int round = 0; round < rounds; ++round) {
        std::unique_ptr<Library> library;
        Seconds longest = timeOf([&] { library = std::make_unique<Library>(folder); });
        while (library->store.isLoading())
            longest = std::max(longest, timeOf(&handleEvents));
        if (library->list.rowCount() < linkCount)
            longest = Seconds::max();
        times.append(longest);
    }
    return {u"longest hold of the main thread at the start, to 16 ms"_s, median(times) / frame,
            milliseconds(median(times)), Limit{Limit::Kind::Below, 1}};
}

/// The changes that a user makes one at a time.
enum class Change { Save, Edit, Delete };

void make(Change change, Library &library, const QString &name)
{
    const PlaylistEntries &entries = library.store.entries();
    const qsizetype middle = entries.size() / 2;
    switch (change) {
    case Change::Save:
        library.store.save(QUrl(u"http://new.example/%1.m3u8"_s.arg(name)), u"New " + name);
        break;
    case Change::Edit: {
        PlaylistEntry entry = entries.at(middle);
        entry.name += name;
        library.store.setEntries(entries.replacing(middle, 1, {entry}));
        library.store.persist();
        break;
    }
    case Change::Delete:
        library.history.deleteForGood(entries.id(middle));
        break;
    }
}

Row changing(const QString &what, const QString &folder, int rounds, Change change,
             const QString &search)
{
    Library library(folder);
    library.list.setFilterText(search);
    // A deletion also clears what could be undone.
    for (int edit = 0; edit < 20; ++edit)
        longestHold(library, folder, [&] { make(Change::Edit, library, u"x"_s); });
    QList<Seconds> times;
    for (int round = 0; round < rounds; ++round) {
        times.append(longestHold(library, folder,
                                 [&] { make(change, library, search + QString::number(round)); }));
    }
    return {what, median(times) / frame, milliseconds(median(times)), Limit{Limit::Kind::Below, 1}};
}

/// Another list of as many links takes the library's place, and the change is undone and made
/// again.
QList<Row> importing(const QString &hold, const QString &folder, int rounds)
{
    Library library(folder);
    QList<Seconds> imports;
    QList<Seconds> steps;
    for (int round = 0; round < rounds; ++round) {
        // Of another size each time, which tells when it is stored.
        const PlaylistEntries imported = links(linkCount + 1 + round);
        imports.append(longestHold(library, folder, [&] {
            library.store.setEntries(imported);
            library.store.persist();
        }));
        steps.append(longestHold(library, folder, [&] { library.history.undo(); }));
        steps.append(longestHold(library, folder, [&] { library.history.redo(); }));
    }
    const auto row = [&](const QString &what, const QList<Seconds> &times) {
        return Row{hold.arg(what), median(times) / frame, milliseconds(median(times)),
                   Limit{Limit::Kind::Below, 1}};
    };
    return {row(u"an import"_s, imports), row(u"undoing an import"_s, steps)};
}

Row loading(const QString &folder, int rounds)
{
    QtScheduler scheduler;
    FileUserDefaults defaults(folder);
    QList<Seconds> times;
    qsizetype size = 0;
    for (int round = 0; round < rounds; ++round) {
        times.append(processorTimeOf([&] {
            const LocalM3UStore store(defaults, scheduler);
            size = store.entries().size();
        }));
    }
    Row row{u"processor time of loading 200,000 links, to 300 ms"_s, median(times) / loadingTime,
            milliseconds(median(times)), Limit{Limit::Kind::Below, 1}};
    if (size < linkCount)
        row.ratio = std::unexpected(u"found %1 links"_s.arg(size));
    return row;
}

/// The time of 50,000 questions about `different` addresses by turns, half of them answered yes.
Seconds timeOfQuestions(const PlaylistEntries &entries, int different, int rounds)
{
    constexpr int questions = 50'000;
    const AddressIndex addresses(entries);
    QList<QUrl> urls;
    for (int i = 0; i < different; ++i) {
        QUrl url = entries.at(qint64(i) * 7919 % entries.size()).url;
        if (i % 2 == 0)
            url.setFragment(u"x"_s);
        urls.append(url);
    }
    QList<Seconds> times;
    qsizetype found = 0;
    for (int round = 0; round < rounds; ++round) {
        times.append(timeOf([&] {
            for (int i = 0; i < questions; ++i)
                found += addresses.indexOf(urls[i % different]) >= 0 ? 1 : 0;
        }));
    }
    return found == qsizetype(rounds) * questions / 2 ? median(times) : Seconds::max();
}

/// With few different addresses, as a window shows them, the processor's cache holds what is
/// needed; with many it is the memory that is measured too.
Row asking(const QString &what, int different, int rounds, std::optional<Limit> limit)
{
    const Seconds many = timeOfQuestions(links(linkCount), different, rounds);
    const Seconds few = timeOfQuestions(links(fewLinks), different, rounds);
    return {what, many / few,
            u"50,000 questions in %1, in %2"_s.arg(milliseconds(many), milliseconds(few)), limit};
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const int rounds = roundsAsked(argc, argv, 9);
    const QTemporaryDir folder;
    FileUserDefaults defaults(folder.path());
    if (!defaults.setData(LocalM3UStore::defaultsKey, encodeEntries(links(linkCount)))) {
        return report(u"library"_s,
                      {{u"200,000 links"_s, std::unexpected(u"They cannot be stored."_s)}});
    }
    const QString hold = u"longest hold of the main thread by %1, to 16 ms"_s;
    QList<Row> rows{
        loading(folder.path(), rounds),
        starting(folder.path(), rounds),
        changing(hold.arg(u"a save"_s), folder.path(), rounds, Change::Save, {}),
        changing(hold.arg(u"an edit"_s), folder.path(), rounds, Change::Edit, {}),
        changing(hold.arg(u"a deletion"_s), folder.path(), rounds, Change::Delete, {}),
        changing(hold.arg(u"a save during a search"_s), folder.path(), rounds, Change::Save,
                 u"sports"_s),
        asking(u"contains, to that in a library of 50"_s, 100, rounds,
               Limit{Limit::Kind::AtMost, 1.2}),
        asking(u"contains for 50,000 different addresses, to a library of 50"_s, 50'000, rounds,
               std::nullopt),
    };
    rows += importing(hold, folder.path(), rounds);
    return report(u"library"_s, rows);
}

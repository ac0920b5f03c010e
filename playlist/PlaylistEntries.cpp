#include "playlist/PlaylistEntries.h"

#include <QHash>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cstring>

namespace lumaro {

namespace {

using Slice = PlaylistEntriesBuilder::Slice;

/// Set in the offset of a slice that lies among the added values.
constexpr quint32 addedFlag = quint32(1) << 31;

struct Record
{
    QUuid id;
    Slice name;
    Slice url;
    Slice logo;
    qint32 group = -1;
    qint32 country = -1;
};

std::optional<QString> optionalText(QUtf8StringView text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text.toString());
}

QUrl decodeUrl(QUtf8StringView text)
{
    return QUrl::fromEncoded(QByteArray(text.data(), text.size()));
}

bool isSameText(QUtf8StringView left, QUtf8StringView right)
{
    return left.size() == right.size()
        && (left.data() == right.data()
            || std::memcmp(left.data(), right.data(), size_t(left.size())) == 0);
}

/// The number of `value` among `values`, where it is put if it is new; -1 for an empty one.
qint32 numberOf(std::vector<QByteArray> &values, const QByteArray &value)
{
    if (value.isEmpty())
        return -1;
    const auto known = std::ranges::find(values, value);
    const auto number = qint32(known - values.begin());
    if (known == values.end())
        values.push_back(value);
    return number;
}

} // namespace

struct PlaylistEntries::Data
{
    QUtf8StringView view(Slice slice) const
    {
        const QByteArray &source = slice.offset & addedFlag ? added : text;
        return {source.constData() + (slice.offset & ~addedFlag), qsizetype(slice.length)};
    }

    Slice add(QByteArrayView value)
    {
        // What does not fit any more is lost, which beats another entry's value in its place.
        if (value.isEmpty() || added.size() + value.size() > maximumTextSize)
            return {};
        const Slice slice{quint32(added.size()) | addedFlag, quint32(value.size())};
        added.append(value);
        return slice;
    }

    Record record(const PlaylistEntry &entry)
    {
        return {
            .id = entry.id,
            .name = add(entry.name.toUtf8()),
            .url = add(entry.url.toEncoded()),
            .logo = add(entry.logoURL.value_or(QUrl()).toEncoded()),
            .group = numberOf(groups, entry.groupTitle.value_or(QString()).toUtf8()),
            .country = numberOf(countries, entry.countryCode.value_or(QString()).toUtf8()),
        };
    }

    QByteArray text;
    QByteArray added;
    std::vector<Record> records;
    std::vector<QByteArray> groups;
    std::vector<QByteArray> countries;
};

qsizetype PlaylistEntries::size() const
{
    return m_data ? qsizetype(m_data->records.size()) : 0;
}

PlaylistEntry PlaylistEntries::at(qsizetype index) const
{
    const Record &record = m_data->records[size_t(index)];
    const QUtf8StringView logo = logoAddress(index);
    return {
        .id = record.id,
        .name = name(index).toString(),
        .url = decodeUrl(address(index)),
        .logoURL = logo.isEmpty() ? std::nullopt : std::optional(decodeUrl(logo)),
        .groupTitle = record.group < 0 ? std::nullopt : std::optional(groupTitle(record.group)),
        .countryCode = optionalText(countryCode(index)),
    };
}

QList<PlaylistEntry> PlaylistEntries::toList() const
{
    QList<PlaylistEntry> list;
    list.reserve(size());
    for (qsizetype i = 0; i < size(); ++i)
        list.append(at(i));
    return list;
}

PlaylistEntries PlaylistEntries::replacing(qsizetype first, qsizetype count,
                                           const QList<PlaylistEntry> &with) const
{
    auto data = m_data ? std::make_shared<Data>(*m_data) : std::make_shared<Data>();
    std::vector<Record> records;
    for (const PlaylistEntry &entry : with)
        records.push_back(data->record(entry));
    const auto place = data->records.begin() + first;
    data->records.insert(data->records.erase(place, place + count), records.begin(), records.end());
    return PlaylistEntries(std::move(data));
}

const QUuid &PlaylistEntries::id(qsizetype index) const
{
    return m_data->records[size_t(index)].id;
}

qsizetype PlaylistEntries::indexOf(const QUuid &id) const
{
    if (!m_data)
        return -1;
    const auto found = std::ranges::find(m_data->records, id, &Record::id);
    return found == m_data->records.end() ? -1 : found - m_data->records.begin();
}

QUtf8StringView PlaylistEntries::name(qsizetype index) const
{
    return m_data->view(m_data->records[size_t(index)].name);
}

QUtf8StringView PlaylistEntries::logoAddress(qsizetype index) const
{
    return m_data->view(m_data->records[size_t(index)].logo);
}

QUtf8StringView PlaylistEntries::address(qsizetype index) const
{
    return m_data->view(m_data->records[size_t(index)].url);
}

QUtf8StringView PlaylistEntries::countryCode(qsizetype index) const
{
    const qint32 country = m_data->records[size_t(index)].country;
    return country < 0 ? QUtf8StringView() : QUtf8StringView(m_data->countries[size_t(country)]);
}

int PlaylistEntries::groupCount() const
{
    return m_data ? int(m_data->groups.size()) : 0;
}

QString PlaylistEntries::groupTitle(int group) const
{
    return QString::fromUtf8(m_data->groups[size_t(group)]);
}

int PlaylistEntries::groupIndex(qsizetype index) const
{
    return m_data->records[size_t(index)].group;
}

QUtf8StringView PlaylistEntries::group(qsizetype index) const
{
    const qint32 group = m_data->records[size_t(index)].group;
    return group < 0 ? QUtf8StringView() : QUtf8StringView(m_data->groups[size_t(group)]);
}

bool PlaylistEntries::isSame(qsizetype index, const PlaylistEntries &other,
                             qsizetype otherIndex) const
{
    return id(index) == other.id(otherIndex) && isSameText(name(index), other.name(otherIndex))
        && isSameText(address(index), other.address(otherIndex))
        && isSameText(logoAddress(index), other.logoAddress(otherIndex))
        && isSameText(group(index), other.group(otherIndex))
        && isSameText(countryCode(index), other.countryCode(otherIndex));
}

bool operator==(const PlaylistEntries &left, const PlaylistEntries &right)
{
    if (left.m_data == right.m_data)
        return true;
    if (left.size() != right.size())
        return false;
    for (qsizetype i = 0; i < left.size(); ++i) {
        if (!left.isSame(i, right, i))
            return false;
    }
    return true;
}

PlaylistEntries PlaylistEntries::fromList(const QList<PlaylistEntry> &entries)
{
    PlaylistEntriesBuilder builder{QByteArray()};
    for (const PlaylistEntry &entry : entries) {
        builder.append(entry.id, builder.add(entry.name.toUtf8()),
                       builder.add(entry.url.toEncoded()),
                       builder.add(entry.logoURL.value_or(QUrl()).toEncoded()),
                       entry.groupTitle.value_or(QString()).toUtf8(),
                       entry.countryCode.value_or(QString()).toUtf8());
    }
    return builder.build();
}

class PlaylistEntriesBuilder::Interner
{
public:
    explicit Interner(std::vector<QByteArray> &values)
        : m_values(values)
    {
    }

    /// -1 for an empty value.
    int number(QByteArrayView value)
    {
        if (value.isEmpty())
            return -1;
        // Neighbours mostly share their group.
        if (m_last >= 0 && QByteArrayView(m_values[size_t(m_last)]) == value)
            return m_last;
        const auto key = QByteArray::fromRawData(value.data(), value.size());
        const auto known = m_numbers.constFind(key);
        if (known != m_numbers.cend())
            return m_last = *known;
        m_last = int(m_values.size());
        m_values.emplace_back(value.toByteArray());
        m_numbers.insert(m_values.back(), m_last);
        return m_last;
    }

private:
    std::vector<QByteArray> &m_values;
    QHash<QByteArray, int> m_numbers;
    int m_last = -1;
};

/// Random identifiers (RFC 4122, version 4), drawn from the system many at a time.
class PlaylistEntriesBuilder::RandomIds
{
public:
    QUuid next()
    {
        if (m_used == m_words.size()) {
            QRandomGenerator::system()->fillRange(m_words.data(), qsizetype(m_words.size()));
            m_used = 0;
        }
        const quint32 *const words = &m_words[m_used];
        m_used += 4;
        const auto byte = [words](int i) { return uchar(words[2 + i / 4] >> (i % 4 * 8)); };
        const QUuid id(words[0], ushort(words[1]), ushort((words[1] >> 16 & 0x0fff) | 0x4000),
                       uchar((byte(0) & 0x3f) | 0x80), byte(1), byte(2), byte(3), byte(4), byte(5),
                       byte(6), byte(7));
        return id;
    }

private:
    std::array<quint32, 4096> m_words{};
    size_t m_used = m_words.size();
};

PlaylistEntriesBuilder::PlaylistEntriesBuilder(QByteArray text)
    : m_data(std::make_unique<PlaylistEntries::Data>())
    , m_groups(std::make_unique<Interner>(m_data->groups))
    , m_countries(std::make_unique<Interner>(m_data->countries))
    , m_ids(std::make_unique<RandomIds>())
{
    Q_ASSERT(text.size() <= PlaylistEntries::maximumTextSize);
    m_data->text = std::move(text);
}

PlaylistEntriesBuilder::~PlaylistEntriesBuilder() = default;

Slice PlaylistEntriesBuilder::inText(QByteArrayView part) const
{
    if (part.isEmpty())
        return {};
    return {quint32(part.data() - m_data->text.constData()), quint32(part.size())};
}

Slice PlaylistEntriesBuilder::add(QByteArrayView value)
{
    return m_data->add(value);
}

void PlaylistEntriesBuilder::append(Slice name, Slice url, Slice logo, QByteArrayView group,
                                    QByteArrayView country)
{
    append(m_ids->next(), name, url, logo, group, country);
}

void PlaylistEntriesBuilder::append(const QUuid &id, Slice name, Slice url, Slice logo,
                                    QByteArrayView group, QByteArrayView country)
{
    m_data->records.push_back(
        {id, name, url, logo, m_groups->number(group), m_countries->number(country)});
}

qsizetype PlaylistEntriesBuilder::addedSize() const
{
    return m_data->added.size();
}

PlaylistEntries PlaylistEntriesBuilder::build()
{
    m_data->added.squeeze();
    return PlaylistEntries(std::shared_ptr<const PlaylistEntries::Data>(std::move(m_data)));
}

} // namespace lumaro

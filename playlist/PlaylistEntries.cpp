#include "playlist/PlaylistEntries.h"

#include "platform/Utf8Text.h"
#include "playlist/PlaylistEntriesData.h"

#include <QHash>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

namespace lumaro {

namespace {

using Slice = PlaylistEntriesBuilder::Slice;

std::optional<QString> optionalText(QUtf8StringView text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text::toString(text));
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

/// The number of `value` among `known` and, after those, `more`, where it is put if it is new; -1
/// for an empty one.
qint32 numberOf(const QByteArray &value, const std::vector<QByteArray> &known,
                std::vector<QByteArray> &more)
{
    if (value.isEmpty())
        return -1;
    if (const auto found = std::ranges::find(known, value); found != known.end())
        return qint32(found - known.begin());
    const auto found = std::ranges::find(more, value);
    const auto number = qint32(known.size()) + qint32(found - more.begin());
    if (found == more.end())
        more.push_back(value);
    return number;
}

} // namespace

void PlaylistEntries::Change::insert(qsizetype first, const QList<PlaylistEntry> &entries,
                                     const Data &data)
{
    std::vector<qint32> numbers;
    for (const PlaylistEntry &entry : entries) {
        numbers.push_back(qint32(data.records.size() + own.records.size()));
        own.records.push_back({
            .id = entry.id,
            .name = own.add(entry.name.toUtf8()),
            .url = own.add(entry.url.toEncoded()),
            .logo = own.add(entry.logoURL.value_or(QUrl()).toEncoded()),
            .group =
                numberOf(entry.groupTitle.value_or(QString()).toUtf8(), data.groups, own.groups),
            .country = numberOf(entry.countryCode.value_or(QString()).toUtf8(), data.countries,
                                own.countries),
        });
    }
    order.insert(order.begin() + first, numbers.begin(), numbers.end());
}

/// Where an entry is kept.
struct PlaylistEntries::Place
{
    const Data &data;
    const Record &record;

    QUtf8StringView view(Slice slice) const { return data.view(slice); }
};

qsizetype PlaylistEntries::number(qsizetype index) const
{
    return m_change ? m_change->order[size_t(index)] : index;
}

PlaylistEntries::Place PlaylistEntries::place(qsizetype index) const
{
    const auto number = size_t(this->number(index));
    if (number < m_data->records.size())
        return {*m_data, m_data->records[number]};
    return {m_change->own, m_change->own.records[number - m_data->records.size()]};
}

qsizetype PlaylistEntries::indexInOrigin(qsizetype index) const
{
    const qsizetype number = this->number(index);
    return number < qsizetype(m_data->records.size()) ? number : -1;
}

qsizetype PlaylistEntries::size() const
{
    if (m_change)
        return qsizetype(m_change->order.size());
    return m_data ? qsizetype(m_data->records.size()) : 0;
}

PlaylistEntry PlaylistEntries::at(qsizetype index) const
{
    const QUtf8StringView logo = logoAddress(index);
    return {
        .id = id(index),
        .name = text::toString(name(index)),
        .url = decodeUrl(address(index)),
        .logoURL = logo.isEmpty() ? std::nullopt : std::optional(decodeUrl(logo)),
        .groupTitle = optionalText(group(index)),
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

std::shared_ptr<PlaylistEntries::Change> PlaylistEntries::copyOfChange() const
{
    if (m_change)
        return std::make_shared<Change>(*m_change);
    auto change = std::make_shared<Change>();
    change->order.resize(size_t(size()));
    std::iota(change->order.begin(), change->order.end(), 0);
    return change;
}

PlaylistEntries PlaylistEntries::replacing(qsizetype first, qsizetype count,
                                           const QList<PlaylistEntry> &with) const
{
    const auto data = m_data ? m_data : std::make_shared<const Data>();
    const auto change = copyOfChange();
    const auto begin = change->order.begin() + first;
    change->order.erase(begin, begin + count);
    change->insert(first, with, *data);
    return {data, change};
}

const QUuid &PlaylistEntries::id(qsizetype index) const
{
    return place(index).record.id;
}

qsizetype PlaylistEntries::indexOf(const QUuid &id) const
{
    for (qsizetype i = 0; i < size(); ++i) {
        if (this->id(i) == id)
            return i;
    }
    return -1;
}

QUtf8StringView PlaylistEntries::name(qsizetype index) const
{
    const Place at = place(index);
    return at.view(at.record.name);
}

QUtf8StringView PlaylistEntries::logoAddress(qsizetype index) const
{
    const Place at = place(index);
    return at.view(at.record.logo);
}

QUtf8StringView PlaylistEntries::address(qsizetype index) const
{
    const Place at = place(index);
    return at.view(at.record.url);
}

QUtf8StringView PlaylistEntries::countryCode(qsizetype index) const
{
    const qint32 country = place(index).record.country;
    if (country < 0)
        return {};
    const auto number = size_t(country);
    const size_t known = m_data->countries.size();
    return number < known ? m_data->countries[number] : m_change->own.countries[number - known];
}

int PlaylistEntries::groupCount() const
{
    const size_t own = m_change ? m_change->own.groups.size() : 0;
    return m_data ? int(m_data->groups.size() + own) : 0;
}

QUtf8StringView PlaylistEntries::groupText(int group) const
{
    const auto number = size_t(group);
    const size_t known = m_data->groups.size();
    return number < known ? m_data->groups[number] : m_change->own.groups[number - known];
}

QString PlaylistEntries::groupTitle(int group) const
{
    return text::toString(groupText(group));
}

int PlaylistEntries::groupIndex(qsizetype index) const
{
    return place(index).record.group;
}

QUtf8StringView PlaylistEntries::group(qsizetype index) const
{
    const int group = groupIndex(index);
    return group < 0 ? QUtf8StringView() : groupText(group);
}

bool PlaylistEntries::isSame(qsizetype index, const PlaylistEntries &other,
                             qsizetype otherIndex) const
{
    const auto isShared = [&] {
        const qsizetype number = this->number(index);
        return number == other.number(otherIndex)
            && (number < qsizetype(m_data->records.size()) || m_change == other.m_change);
    };
    return (m_data == other.m_data && isShared())
        || (id(index) == other.id(otherIndex) && isSameText(name(index), other.name(otherIndex))
            && isSameText(address(index), other.address(otherIndex))
            && isSameText(logoAddress(index), other.logoAddress(otherIndex))
            && isSameText(group(index), other.group(otherIndex))
            && isSameText(countryCode(index), other.countryCode(otherIndex)));
}

bool operator==(const PlaylistEntries &left, const PlaylistEntries &right)
{
    const qsizetype size = left.size();
    if (size != right.size())
        return false;
    const auto orderOf = [](const PlaylistEntries &entries) {
        return entries.m_change ? entries.m_change->order.data() : nullptr;
    };
    // Where both are made of the same list, most entries need no look.
    const bool isRelated = left.m_data == right.m_data && left.m_change && right.m_change;
    const qint32 *const leftOrder = orderOf(left);
    const qint32 *const rightOrder = orderOf(right);
    const auto known = isRelated ? qint32(left.m_data->records.size()) : 0;
    for (qsizetype i = 0; i < size; ++i) {
        const bool isShared = isRelated && leftOrder[i] == rightOrder[i] && leftOrder[i] < known;
        if (!isShared && !left.isSame(i, right, i))
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
    return {std::shared_ptr<const PlaylistEntries::Data>(std::move(m_data)), nullptr};
}

} // namespace lumaro

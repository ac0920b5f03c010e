#include "bench/playlist/ChannelList.h"

#include <QStringBuilder>

#include <array>

namespace lumaro {

namespace {

constexpr std::array countries{"fr", "de", "tr", "us", "uk", "es", "it", "pl", "nl", "pt",
                               "gr", "ru", "ar", "se", "no", "fi", "ro", "br", "in", "ca"};
constexpr std::array topics{"Sports", "News",    "Movies",  "Series",   "Kids",
                            "Music",  "Général", "Новости", "Spor",     "Cinéma",
                            "Local",  "Docs",    "Culture", "Religión", "Radio"};
constexpr std::array brands{"Canal Nord", "Prime Arena", "Kanal İstanbul", "Первый экран",
                            "Télé Sud",   "Antena Rio",  "Blue Planet",    "Wiener Welle",
                            "Star Kino",  "القناة",      "Radio Plaza",    "City Eye"};
constexpr std::array qualities{"SD", "HD", "FHD", "4K"};
constexpr std::array panels{"http://panel.example.org:8080", "http://cdn1.example.net",
                            "https://edge.example.com"};
constexpr std::array logoHosts{"https://logos.example.net", "http://img.example.org"};

template <size_t N>
QByteArray pick(const std::array<const char *, N> &values, int number)
{
    return values[size_t(number) % N];
}

QByteArray channel(int number, int group)
{
    const QByteArray country = pick(countries, group);
    const QByteArray category =
        country.toUpper() + " | " + pick(topics, group / int(countries.size()));
    const QByteArray digits = QByteArray::number(number);
    const QByteArray name = pick(brands, number / 7) + ' ' + digits + ' ' + pick(qualities, number);
    const QByteArray logo =
        pick(logoHosts, number / 5) + '/' + country + "/channel-" + digits + ".png";
    // Some addresses need a closer look than others.
    const QByteArray ending = number % 20 == 0 ? "%20live.m3u8" : ".ts";
    return "#EXTINF:-1 tvg-id=\"channel" + digits + '.' + country + "\" tvg-name=\"" + name
        + "\" tvg-logo=\"" + logo + "\" group-title=\"" + category + "\"," + name + '\n'
        + pick(panels, number / 50) + "/live/user-4711/b8d0c64e/" + digits + ending + '\n';
}

} // namespace

QByteArray channelList(int count)
{
    const int groups = int(countries.size() * topics.size());
    QByteArray list("#EXTM3U\n");
    list.reserve(qsizetype(count) * 256);
    for (int number = 0; number < count; ++number)
        list += channel(number, int(qint64(number) * groups / count));
    return list;
}

} // namespace lumaro

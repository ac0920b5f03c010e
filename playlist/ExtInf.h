#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace lumaro {

/// What an #EXTINF line of an M3U playlist says of the address that follows it; empty where it
/// says nothing. The views lie in the line.
struct ExtInf
{
    QByteArrayView name;
    QByteArrayView logo;
    QByteArrayView group;
    /// Two upper-case characters.
    QByteArray country;

    static constexpr QByteArrayView tag = "#EXTINF:";

    /// Reads a trimmed line that begins with the tag.
    static ExtInf read(QByteArrayView line);
};

} // namespace lumaro

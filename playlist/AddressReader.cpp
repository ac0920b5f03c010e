#include "playlist/AddressReader.h"

#include <algorithm>
#include <string_view>

namespace lumaro {

namespace {

/// Legal in an address after its authority as it stands (RFC 3986, section 2); percent signs need
/// a closer look.
constexpr std::array<bool, 256> plainAddressBytes = [] {
    std::array<bool, 256> plain{};
    for (const char c : std::string_view("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                         "0123456789-._~:/?@!$&'()*+,;="))
        plain[uchar(c)] = true;
    return plain;
}();

bool isPlainAddressByte(char c)
{
    return plainAddressBytes[uchar(c)];
}

bool endsAuthority(char c)
{
    return c == '/' || c == '?' || c == '#';
}

} // namespace

AddressReader::AddressReader(const QUrl &baseURL)
    : m_base(baseURL)
{
}

bool AddressReader::isPlainWebAddress(QByteArrayView text)
{
    if (text.size() > maximumLength)
        return false;
    const qsizetype scheme = text.startsWith("http://") ? 7 : text.startsWith("https://") ? 8 : 0;
    if (scheme == 0)
        return false;
    const auto end = std::find_if(text.begin() + scheme, text.end(), endsAuthority);
    return std::all_of(end, text.end(), isPlainAddressByte) && isKnownRoot({text.begin(), end});
}

bool AddressReader::isKnownRoot(QByteArrayView root)
{
    QByteArray &known = m_knownRoots[qHash(root) % m_knownRoots.size()];
    if (root == known)
        return true;
    const QUrl url(QString::fromUtf8(root), QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() || url.toEncoded() != root)
        return false;
    known = root.toByteArray();
    return true;
}

std::optional<QUrl> AddressReader::parsed(QByteArrayView text)
{
    QUrl address(QString::fromUtf8(text), QUrl::StrictMode);
    return address.isValid() ? std::optional(std::move(address)) : std::nullopt;
}

std::optional<QUrl> AddressReader::resolved(QByteArrayView text) const
{
    if (text.size() > maximumLength)
        return std::nullopt;
    std::optional<QUrl> address = parsed(text);
    if (!address || !address->isRelative())
        return address;
    QUrl absolute = m_base.resolved(*address);
    if (!absolute.isValid() || absolute.isRelative())
        return std::nullopt;
    return absolute;
}

} // namespace lumaro

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QUrl>

#include <array>
#include <optional>

namespace lumaro {

/// Reads the addresses in a playlist, which may be relative to the playlist's own (RFC 3986).
class AddressReader
{
public:
    /// Anything longer in a playlist counts as no address, in bytes.
    static constexpr qsizetype maximumLength = 1 << 20;

    explicit AddressReader(const QUrl &baseURL);

    /// True when `text` is a complete web address that stays exactly as it is. Quick, but false for
    /// some that are.
    bool isPlainWebAddress(QByteArrayView text);

    /// `text` on its own, however long; empty when it is no address.
    static std::optional<QUrl> parsed(QByteArrayView text);

    /// The absolute form of `text`; empty when it is no address.
    std::optional<QUrl> resolved(QByteArrayView text) const;

private:
    bool isKnownRoot(QByteArrayView root);

    QUrl m_base;
    /// Schemes with authorities that QUrl has judged, each where its hash says: a list names few of
    /// them, by turns.
    std::array<QByteArray, 64> m_knownRoots;
};

} // namespace lumaro

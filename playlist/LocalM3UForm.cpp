#include "playlist/LocalM3UForm.h"

#include "platform/Utf8Text.h"
#include "playlist/AddressReader.h"

#include <QCoreApplication>

namespace lumaro {

namespace {

bool isWebAddress(const QUrl &url)
{
    // QUrl lower-cases the scheme.
    return (url.scheme() == u"http" || url.scheme() == u"https") && !url.host().isEmpty();
}

std::optional<QString> optionalText(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

} // namespace

QString description(LocalM3UFormError error)
{
    switch (error) {
    case LocalM3UFormError::emptyName:
        return QCoreApplication::translate("LocalM3UForm", "Enter a channel or video name.");
    case LocalM3UFormError::invalidAddress:
        return QCoreApplication::translate("LocalM3UForm", "Enter a valid HTTP or HTTPS M3U8 URL.");
    case LocalM3UFormError::invalidLogoAddress:
        return QCoreApplication::translate("LocalM3UForm", "Enter a valid logo URL.");
    case LocalM3UFormError::invalidCountryCode:
        return QCoreApplication::translate("LocalM3UForm",
                                           "Enter a country code of two characters.");
    }
    Q_UNREACHABLE();
}

LocalM3UForm LocalM3UForm::of(const PlaylistEntry &entry)
{
    return {
        .name = entry.name,
        .address = entry.url.toString(QUrl::FullyEncoded),
        .logoAddress = entry.logoURL.value_or(QUrl()).toString(QUrl::FullyEncoded),
        .countryCode = entry.countryCode.value_or(QString()),
        .category = entry.groupTitle.value_or(QString()),
    };
}

std::expected<PlaylistEntry, LocalM3UFormError> LocalM3UForm::entry(const QUuid &id) const
{
    PlaylistEntry entry{.id = id,
                        .name = name.trimmed(),
                        .url = {},
                        .logoURL = {},
                        .groupTitle = optionalText(category.trimmed()),
                        .countryCode = optionalText(countryCode.trimmed().toUpper())};
    if (entry.name.isEmpty())
        return std::unexpected(LocalM3UFormError::emptyName);

    entry.url = AddressReader::parsed(address.trimmed().toUtf8()).value_or(QUrl());
    if (!isWebAddress(entry.url))
        return std::unexpected(LocalM3UFormError::invalidAddress);

    if (const QString logo = logoAddress.trimmed(); !logo.isEmpty()) {
        entry.logoURL = AddressReader::parsed(logo.toUtf8());
        if (!entry.logoURL)
            return std::unexpected(LocalM3UFormError::invalidLogoAddress);
    }

    if (entry.countryCode && !text::twoCharacterCode(entry.countryCode->toUtf8()))
        return std::unexpected(LocalM3UFormError::invalidCountryCode);
    return entry;
}

} // namespace lumaro

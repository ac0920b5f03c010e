#pragma once

#include "playlist/PlaylistEntry.h"

#include <expected>

namespace lumaro {

/// What is wrong with a filled-in form.
enum class LocalM3UFormError {
    emptyName,
    invalidAddress,
    invalidLogoAddress,
    invalidCountryCode, ///< neither two characters nor none
};

/// An English sentence for the user.
QString description(LocalM3UFormError error);

/// The texts of the form for a link of the library, as typed.
struct LocalM3UForm
{
    QString name;
    QString address;
    QString logoAddress;
    QString countryCode;
    QString category;

    static LocalM3UForm of(const PlaylistEntry &entry);

    /// The entry that they describe, or the first that is wrong from top to bottom.
    std::expected<PlaylistEntry, LocalM3UFormError> entry(const QUuid &id) const;

    bool operator==(const LocalM3UForm &) const = default;
};

} // namespace lumaro

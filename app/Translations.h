#pragma once

#include <QLocale>
#include <QStringList>

namespace lumaro {

/// Where catalogues are looked for: `lumaro/translations` in the XDG data directories, the user's
/// own first, then those that are built in.
QStringList translationFolders();

/// Makes the application speak the first of the user's languages that it knows; English needs no
/// catalogue. To be called once, after the application object is made and before anything that
/// shows a text: texts are translated when they are made.
void installTranslations(const QLocale &locale = QLocale(),
                         const QStringList &folders = translationFolders());

} // namespace lumaro

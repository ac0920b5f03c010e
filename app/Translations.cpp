#include "app/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QStandardPaths>
#include <QTranslator>

#include <algorithm>
#include <memory>

namespace lumaro {

namespace {

/// False when no catalogue of that name is in any of the folders.
bool install(const QString &name, const QStringList &folders)
{
    auto translator = std::make_unique<QTranslator>();
    const auto loads = [&](const QString &folder) { return translator->load(name, folder); };
    if (!std::ranges::any_of(folders, loads))
        return false;
    QCoreApplication::installTranslator(translator.get());
    translator.release()->setParent(QCoreApplication::instance());
    return true;
}

} // namespace

QStringList translationFolders()
{
    return QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                     QStringLiteral("lumaro/translations"),
                                     QStandardPaths::LocateDirectory)
        << QStringLiteral(":/lumaro/translations");
}

void installTranslations(const QLocale &locale, const QStringList &folders)
{
    for (QString language : locale.uiLanguages()) {
        language.replace(u'-', u'_');
        // Who reads English better than what comes after it shall not be given that.
        if (language == u"C" || language.section(u'_', 0, 0) == u"en")
            return;
        if (install(u"lumaro_" + language, folders)) {
            // What Qt itself says.
            install(u"qt_" + language, {QLibraryInfo::path(QLibraryInfo::TranslationsPath)});
            return;
        }
    }
}

} // namespace lumaro

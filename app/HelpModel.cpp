#include "app/HelpModel.h"

#include "app/ShortcutTable.h"

#include <QFile>

namespace lumaro {

namespace {

QList<TextRows::Row> libraryCredits()
{
    const auto row = [](const QString &name, const QString &licence, const QString &use) {
        return TextRows::Row{use, name, licence};
    };
    const QString playing = HelpModel::tr("Playing");
    const QString window = HelpModel::tr("Window and Browser");
    const QString recording = HelpModel::tr("Recording and Saving");
    return {
        row(QStringLiteral("Qt %1").arg(QString::fromLatin1(qVersion())),
            QStringLiteral("LGPL 3, GPL 2 or 3"), window),
        row(QStringLiteral("Qt WebEngine with Chromium"),
            QStringLiteral("LGPL 3; Chromium: BSD and others"), window),
        row(QStringLiteral("QCoro"), QStringLiteral("MIT"), window),
        row(QStringLiteral("Inter typeface"), QStringLiteral("SIL Open Font License 1.1"), window),
        row(QStringLiteral("libmpv"), QStringLiteral("GPL 2 or later"), playing),
        row(QStringLiteral("FFmpeg"), QStringLiteral("LGPL 2.1 or later, parts GPL 2 or later"),
            playing),
        row(QStringLiteral("dlib"), QStringLiteral("Boost Software License 1.0"), playing),
        row(QStringLiteral("x264"), QStringLiteral("GPL 2 or later"), recording),
        row(QStringLiteral("PulseAudio client library"), QStringLiteral("LGPL 2.1 or later"),
            recording),
        row(QStringLiteral("libcurl"), QStringLiteral("curl licence"), recording),
        row(QStringLiteral("OpenSSL"), QStringLiteral("Apache 2.0"), recording),
        row(QStringLiteral("zlib"), QStringLiteral("zlib licence"), recording),
    };
}

} // namespace

HelpModel::HelpModel(const MenuCommands &menus, const LocalM3UCommands &library,
                     const QString &versionNumber, QObject *parent)
    : QObject(parent)
    , version(versionNumber)
    , m_menus(menus)
    , m_library(library)
{
    m_credits.setRows(libraryCredits());
}

void HelpModel::prepareShortcuts()
{
    m_shortcuts.setRows(shortcutTable(m_menus, m_library));
}

QString HelpModel::licence() const
{
    QFile file(QStringLiteral(":/lumaro/LICENSE"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace lumaro

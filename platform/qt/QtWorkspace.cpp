#include "platform/qt/QtWorkspace.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QProcess>

namespace lumaro {

namespace {

void openFolder(const QUrl &file)
{
    QDesktopServices::openUrl(file.adjusted(QUrl::RemoveFilename));
}

} // namespace

QtWorkspace::QtWorkspace(QObject *parent)
    : QObject(parent)
{
}

void QtWorkspace::activateFileViewer(const QList<QUrl> &files)
{
    if (files.isEmpty())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    const QString startupId;
    call << QUrl::toStringList(files, QUrl::FullyEncoded) << startupId;

    const auto *const reply =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this,
            [file = files.first()](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                if (finished->isError())
                    openFolder(file);
            });
}

void QtWorkspace::openInBrowser(const QUrl &page)
{
    QDesktopServices::openUrl(page);
}

void QtWorkspace::openScreenCaptureSettings()
{
    // Desktops here have no address for one page of their settings.
    if (!QProcess::startDetached(QStringLiteral("gnome-control-center"),
                                 {QStringLiteral("privacy")}))
        QProcess::startDetached(QStringLiteral("systemsettings"), {});
}

} // namespace lumaro

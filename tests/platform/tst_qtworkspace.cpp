#include "platform/qt/QtWorkspace.h"

#include "tests/e2e/servers/ChildProcess.h"

#include <QDBusConnection>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// A file manager on the bus.
class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList shown;

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &) { shown.append(uris); }
};

/// What opens a folder where there is no such file manager.
class FolderOpener : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }
};

const QUrl file = QUrl::fromLocalFile(u"/films/Über #1.ts"_s);

} // namespace

class QtWorkspaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { QDesktopServices::unsetUrlHandler(u"file"_s); }
    void opensTheFolderWithoutAFileManager();
    void showsTheFileInTheFileManager();

private:
    QTemporaryDir m_folder;
    ChildProcess m_bus;
    FolderOpener m_opener;
};

void QtWorkspaceTest::initTestCase()
{
    const QString socket = m_folder.filePath(u"bus"_s);
    const QString address = u"unix:path="_s + socket;
    QVERIFY(m_bus.start(u"dbus-daemon"_s,
                        {u"--session"_s, u"--nofork"_s, u"--address="_s + address}, {}));
    QTRY_VERIFY(QFile::exists(socket));
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
    QDesktopServices::setUrlHandler(u"file"_s, &m_opener, "open");
}

void QtWorkspaceTest::opensTheFolderWithoutAFileManager()
{
    QtWorkspace workspace;
    workspace.activateFileViewer({});
    workspace.activateFileViewer({file});
    QTRY_COMPARE(m_opener.opened, QList{QUrl::fromLocalFile(u"/films/"_s)});
}

void QtWorkspaceTest::showsTheFileInTheFileManager()
{
    m_opener.opened.clear();
    QDBusConnection bus = QDBusConnection::sessionBus();
    FileManager manager;
    QVERIFY(bus.registerObject(u"/org/freedesktop/FileManager1"_s, &manager,
                               QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.FileManager1"_s));
    QtWorkspace workspace;
    workspace.activateFileViewer({file});
    QTRY_COMPARE(manager.shown, QStringList{u"file:///films/%C3%9Cber%20%231.ts"_s});
    QVERIFY(m_opener.opened.isEmpty());
}

QTEST_MAIN(QtWorkspaceTest)
#include "tst_qtworkspace.moc"

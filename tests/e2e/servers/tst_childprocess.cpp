#include "tests/e2e/servers/ChildProcess.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

/// The servers themselves are checked by the tests that use them; this is about not leaving any
/// behind.
class ChildProcessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void childrenEndWithTheirStarter();
    void suspendedChildrenEnd();
};

void ChildProcessTest::childrenEndWithTheirStarter()
{
    ChildProcess child;
    std::thread([&child] { QVERIFY(child.start(u"sleep"_s, {u"60"_s}, {})); }).join();
    QVERIFY(child.waitForFinished(5s));
    QVERIFY(!child.exitCode());
}

void ChildProcessTest::suspendedChildrenEnd()
{
    const QTemporaryDir folder;
    ChildProcess child;
    QVERIFY(child.start(u"sh"_s,
                        {u"-c"_s, u"trap 'exit 7' TERM; : >ready; while :; do sleep 0.02; done"_s},
                        {.workingFolder = folder.path()}));
    QTRY_VERIFY(QFileInfo::exists(folder.filePath(u"ready"_s)));
    child.sendSignal(SIGSTOP);
    child.stop(20s);
    QCOMPARE(child.exitCode(), 7);
}

QTEST_GUILESS_MAIN(ChildProcessTest)
#include "tst_childprocess.moc"

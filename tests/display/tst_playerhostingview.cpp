#include "display/PlayerHostingView.h"

#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

class PlayerHostingViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_window.reset(); }

    void pictureFillsTheView();
    void pictureMayGoFirst();
    void clicksAreToldWithTheirWindow();
    void doubleClickAsksForFullScreen();

private:
    NotificationCenter m_notifications;
    std::unique_ptr<QQuickWindow> m_window;
    PlayerHostingView *m_view = nullptr;
};

void PlayerHostingViewTest::init()
{
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(400, 300);
    m_view = new PlayerHostingView(m_window->contentItem());
    m_view->setSize({400, 300});
    m_view->setProperty("notifications", QVariant::fromValue(&m_notifications));
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void PlayerHostingViewTest::pictureFillsTheView()
{
    QQuickItem picture;
    picture.setPosition({7, 7});
    m_view->setPicture(&picture);
    QCOMPARE(picture.parentItem(), m_view);
    const auto fills = [&] {
        return picture.position() == QPointF() && picture.size() == m_view->size();
    };
    QVERIFY(fills());
    for (const QSizeF size : {QSizeF(1920, 80), QSizeF(90, 1600), QSizeF(0, 0), QSizeF(33, 33)}) {
        m_view->setSize(size);
        QVERIFY(fills());
    }
}

void PlayerHostingViewTest::pictureMayGoFirst()
{
    auto picture = std::make_unique<QQuickItem>();
    m_view->setPicture(picture.get());
    picture.reset();
    QCOMPARE(m_view->picture(), nullptr);
    m_view->setSize({20, 20});
}

void PlayerHostingViewTest::clicksAreToldWithTheirWindow()
{
    const QSignalSpy posted(&m_notifications, &NotificationCenter::posted);
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, {50, 50});
    QCOMPARE(posted.count(), 1);
    QCOMPARE(posted[0][0].toString(), u"Lumaro.playerSurfaceClicked"_s);
    QCOMPARE(posted[0][1].value<QObject *>(), m_window.get());
    QTest::mouseClick(m_window.get(), Qt::RightButton, {}, {50, 50});
    QCOMPARE(posted.count(), 1);
}

void PlayerHostingViewTest::doubleClickAsksForFullScreen()
{
    const QSignalSpy asked(m_view, &PlayerHostingView::fullScreenToggleRequested);
    const QSignalSpy posted(&m_notifications, &NotificationCenter::posted);
    QTest::mouseDClick(m_window.get(), Qt::LeftButton, {}, {50, 50});
    QCOMPARE(asked.count(), 1);
    QCOMPARE(posted.count(), 1);
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, {50, 50});
    QCOMPARE(posted.count(), 2);
    QTest::mouseDClick(m_window.get(), Qt::RightButton, {}, {50, 50});
    QCOMPARE(asked.count(), 1);
}

QTEST_MAIN(PlayerHostingViewTest)
#include "tst_playerhostingview.moc"

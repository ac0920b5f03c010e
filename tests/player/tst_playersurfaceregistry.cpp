#include "player/PlayerRecordingSurface.h"

#include <QTest>

#include <memory>

using namespace lumaro;

namespace {

class Surface : public QObject, public PlayerRecordingSurface
{
public:
    QQuickItem *recordingView() override { return nullptr; }
    QRectF recordingRectInView() const override { return {}; }
};

} // namespace

class PlayerSurfaceRegistryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsTheNewestView();
    void doesNotKeepAView();
};

void PlayerSurfaceRegistryTest::knowsTheNewestView()
{
    PlayerSurfaceRegistry registry;
    QCOMPARE(registry.currentSurface(), nullptr);
    Surface first;
    Surface second;
    registry.setCurrentSurface(&first);
    registry.setCurrentSurface(&second);
    registry.clear(&first);
    QCOMPARE(registry.currentSurface(), &second);
    registry.clear(&second);
    QCOMPARE(registry.currentSurface(), nullptr);
}

void PlayerSurfaceRegistryTest::doesNotKeepAView()
{
    PlayerSurfaceRegistry registry;
    auto surface = std::make_unique<Surface>();
    registry.setCurrentSurface(surface.get());
    surface.reset();
    QCOMPARE(registry.currentSurface(), nullptr);
}

QTEST_APPLESS_MAIN(PlayerSurfaceRegistryTest)
#include "tst_playersurfaceregistry.moc"

#pragma once

#include "player/WebPlayerView.h"

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// Holds the web view of a site's player: sees each press on it, and the keys that follow links,
/// before the page does, and can be recorded.
class YouTubeHostingView : public QQuickItem, public PlayerRecordingSurface
{
    Q_OBJECT
    QML_ELEMENT
    /// Whose page this shows; set once.
    Q_PROPERTY(lumaro::WebPlayerView *player MEMBER m_player NOTIFY changed)
    /// The page of the web view inside; set once.
    Q_PROPERTY(lumaro::PlayerPage *page MEMBER m_page NOTIFY changed)

public:
    explicit YouTubeHostingView(QQuickItem *parent = nullptr);
    ~YouTubeHostingView() override;

    QQuickItem *recordingView() override { return this; }
    QRectF recordingRectInView() const override { return boundingRect(); }

Q_SIGNALS:
    void changed();

protected:
    void componentComplete() override;
    bool childMouseEventFilter(QQuickItem *item, QEvent *event) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    /// For the window's keys: the page's item takes them before any item around it.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool holdsFocus() const;

    QPointer<WebPlayerView> m_player;
    QPointer<PlayerPage> m_page;
    QPointer<QQuickWindow> m_window;
};

} // namespace lumaro

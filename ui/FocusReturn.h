#pragma once

#include <QList>
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// Gives the keyboard's focus back to whoever had it before a popup opened, unless something else
/// took it on purpose meanwhile. Popups that open from others, as a dialog from a menu, may close
/// in any order.
class FocusReturn : public QObject
{
    Q_OBJECT
    QML_ELEMENT

public:
    using QObject::QObject;
    ~FocusReturn() override;

    /// To be called before the popup takes the focus; `content` is any item of the popup.
    Q_INVOKABLE void remember(const QQuickItem *content);
    /// To be called when the popup has closed.
    Q_INVOKABLE void giveBack(const QQuickItem *content);

private:
    QPointer<QQuickWindow> m_window;
    QPointer<const QQuickItem> m_content;
    /// Who had the focus; then who had it before the popup in which that one is, and so on.
    QList<QPointer<QQuickItem>> m_items;
};

} // namespace lumaro

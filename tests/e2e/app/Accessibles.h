#pragma once

#include <QAccessible>
#include <QList>
#include <QQuickItem>
#include <QQuickWindow>
#include <QString>

namespace lumaro {

/// What assistive technology is told of one thing in a window.
struct Accessible
{
    QAccessible::Role role = QAccessible::NoRole;
    QString name;
    QString description;
    QQuickItem *item = nullptr;
    /// Where it is: the types of the items around it, for a failure's message.
    QString path;

    /// "Button \"Play\" in …".
    QString text() const;
};

/// Everything in the window's accessibility tree that is shown.
QList<Accessible> accessibles(QQuickWindow &window);

/// The items of the window that take the keyboard's focus by Tab: shown, enabled, and with a size.
QList<QQuickItem *> tabStops(QQuickWindow &window);

/// The items that have the focus one after another while `key` (Tab or Backtab) is pressed, until
/// one has it again, or `most` have.
QList<QQuickItem *> traversed(QQuickWindow &window, Qt::Key key, int most = 300);

/// The item's type, and its name for assistive technology if it has one.
QString describe(const QQuickItem *item);

} // namespace lumaro

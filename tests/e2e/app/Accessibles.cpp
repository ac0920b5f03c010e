#include "tests/e2e/app/Accessibles.h"

#include <QMetaEnum>
#include <QTest>

namespace lumaro {

namespace {

/// "IconButton" for IconButton_QMLTYPE_12.
QString typeOf(const QObject *object)
{
    const QString name = QString::fromLatin1(object->metaObject()->className());
    return name.section(QStringLiteral("_QML"), 0, 0);
}

QString roleName(QAccessible::Role role)
{
    return QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(role));
}

void collect(QAccessibleInterface *node, QList<Accessible> &found)
{
    if (!node || node->state().invisible)
        return;
    if (auto *const item = qobject_cast<QQuickItem *>(node->object())) {
        QString path;
        for (const QQuickItem *above = item->parentItem(); above; above = above->parentItem()) {
            if (const QString type = typeOf(above); !type.startsWith(u"QQuick"))
                path += u" < " + type;
        }
        found.append({.role = node->role(),
                      .name = node->text(QAccessible::Name),
                      .description = node->text(QAccessible::Description),
                      .item = item,
                      .path = path});
    }
    for (int i = 0; i < node->childCount(); ++i)
        collect(node->child(i), found);
}

void collectStops(QQuickItem *item, QList<QQuickItem *> &found)
{
    if (!item->isVisible() || !item->isEnabled())
        return;
    if (item->activeFocusOnTab() && item->width() > 0 && item->height() > 0)
        found.append(item);
    for (QQuickItem *const child : item->childItems())
        collectStops(child, found);
}

} // namespace

QString Accessible::text() const
{
    return roleName(role) + u" \"" + name + u"\"" + path;
}

QList<Accessible> accessibles(QQuickWindow &window)
{
    QList<Accessible> found;
    collect(QAccessible::queryAccessibleInterface(&window), found);
    return found;
}

QList<QQuickItem *> tabStops(QQuickWindow &window)
{
    // A modal popup keeps the keyboard to itself.
    QQuickItem *root = window.contentItem();
    for (QQuickItem *const layer : window.contentItem()->childItems()) {
        if (typeOf(layer) == u"QQuickOverlay" && layer->isVisible())
            root = layer;
    }
    QList<QQuickItem *> found;
    collectStops(root, found);
    return found;
}

QList<QQuickItem *> traversed(QQuickWindow &window, Qt::Key key, int most)
{
    QList<QQuickItem *> stops;
    const Qt::KeyboardModifiers modifiers =
        key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier;
    while (stops.size() < most) {
        QTest::keyClick(&window, key, modifiers);
        QQuickItem *const now = window.activeFocusItem();
        if (stops.contains(now))
            break;
        stops.append(now);
    }
    return stops;
}

QString describe(const QQuickItem *item)
{
    if (!item)
        return QStringLiteral("nothing");
    QAccessibleInterface *const node =
        QAccessible::queryAccessibleInterface(const_cast<QQuickItem *>(item));
    return typeOf(item) + u" \"" + (node ? node->text(QAccessible::Name) : QString()) + u'"';
}

} // namespace lumaro

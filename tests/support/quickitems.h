#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <QtQuickTest/quicktest.h>
#include <QtTest>

#include <functional>

// Finding and clicking the items of a whole window, for tests that drive the application's own UI.
namespace QuickItems {

// Items under root that match, in tree order; only shown ones (and only under shown ones) when asked.
inline QList<QQuickItem *> find(QQuickItem *root, const std::function<bool(QQuickItem *)> &wanted, bool shownOnly = false)
{
    QList<QQuickItem *> found;
    if (shownOnly && !root->isVisible())
        return found;
    if (wanted(root))
        found << root;
    for (QQuickItem *child : root->childItems())
        found += find(child, wanted, shownOnly);
    return found;
}

inline QQuickItem *named(QQuickItem *root, const QString &objectName)
{
    return find(root, [&](QQuickItem *i) { return i->objectName() == objectName; }).value(0);
}

// The first shown item whose property has this value ("text" of a label, "tip" of a button).
inline QQuickItem *shownWith(QQuickItem *root, const char *property, const QString &value)
{
    return find(root, [&](QQuickItem *i) { return i->property(property) == value; }, true).value(0);
}

// Layouts place their items at the next polish: a click before it lands where the item was.
inline bool click(QQuickItem *target, qreal xFraction = 0.5, qreal yFraction = 0.5)
{
    if (!target || !QQuickTest::qWaitForPolish(target->window()))
        return false;
    const QPointF point(target->width() * xFraction, target->height() * yFraction);
    QTest::mouseClick(target->window(), Qt::LeftButton, {}, target->mapToScene(point).toPoint());
    return true;
}

} // namespace QuickItems

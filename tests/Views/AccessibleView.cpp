// SPDX-License-Identifier: Apache-2.0
#include "tests/Views/AccessibleView.h"

#include <QWindow>

namespace mossbank::test {

namespace {

void collect(QAccessibleInterface* part, QAccessible::Role role,
             QList<QAccessibleInterface*>& found)
{
    if (!part || !part->isValid() || part->state().invisible)
        return;
    if (part->role() == role)
        found.append(part);
    for (int child = 0; child < part->childCount(); ++child)
        collect(part->child(child), role, found);
}

} // namespace

AccessibleView::AccessibleView(QWindow& window)
    : m_window(window)
{
    QAccessible::setActive(true);
}

QList<QAccessibleInterface*> AccessibleView::parts(QAccessible::Role role) const
{
    QList<QAccessibleInterface*> found;
    collect(QAccessible::queryAccessibleInterface(&m_window), role, found);
    return found;
}

QAccessibleInterface* AccessibleView::find(QAccessible::Role role, const QString& name) const
{
    for (QAccessibleInterface* const part : parts(role)) {
        if (part->text(QAccessible::Name) == name)
            return part;
    }
    return nullptr;
}

QStringList AccessibleView::names(QAccessible::Role role) const
{
    QStringList names;
    for (QAccessibleInterface* const part : parts(role))
        names.append(part->text(QAccessible::Name));
    return names;
}

bool AccessibleView::press(const QString& button) const
{
    QAccessibleInterface* const part = find(QAccessible::Button, button);
    if (!part || !part->actionInterface())
        return false;
    part->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    return true;
}

} // namespace mossbank::test

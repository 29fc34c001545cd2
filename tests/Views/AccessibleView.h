// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAccessible>
#include <QString>
#include <QStringList>

class QWindow;

namespace mossbank::test {

/// A window of this process, as assistive tools meet it.
class AccessibleView {
public:
    explicit AccessibleView(QWindow& window);

    /// The visible part of this role and name. Null when there is none.
    QAccessibleInterface* find(QAccessible::Role role, const QString& name) const;

    /// The names of all visible parts of this role, in order.
    QStringList names(QAccessible::Role role) const;

    /// Does what an assistive tool does to press it. False when there is no such button.
    bool press(const QString& button) const;

private:
    QList<QAccessibleInterface*> parts(QAccessible::Role role) const;

    QWindow& m_window;
};

} // namespace mossbank::test

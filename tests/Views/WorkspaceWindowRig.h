// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Workspace/WorkspaceWindow.h"
#include "tests/Views/AccessibleView.h"
#include "tests/Views/WorkspaceRig.h"

#include <QQuickWindow>

namespace mossbank {

/// The main window over a whole model, with what finds, presses and types in it.
class WorkspaceWindowRig {
protected:
    void begin()
    {
        m_rig = std::make_unique<WorkspaceRig>();
        m_workspace = std::make_unique<WorkspaceWindow>(m_rig->parts());
    }
    void end()
    {
        m_workspace.reset();
        m_rig.reset();
    }

    void addThree()
    {
        m_rig->add(QStringLiteral("a"), WorkspaceRig::kToday + 3600);
        m_rig->add(QStringLiteral("b"), WorkspaceRig::kToday + 7200, QStringLiteral("Editor"),
                   QStringLiteral("a heron"), Qt::darkBlue);
        m_rig->add(QStringLiteral("c"), WorkspaceRig::kToday + 10'800, QStringLiteral("Editor"),
                   QStringLiteral("moss"), Qt::darkRed);
    }

    void open()
    {
        m_workspace->open();
        QVERIFY(QTest::qWaitForWindowActive(&window()));
        m_rig->settle();
    }

    QQuickWindow& window() const { return *m_workspace->window(); }
    test::AccessibleView view() const { return test::AccessibleView(window()); }
    bool shows(QAccessible::Role role, const QString& name) const
    {
        return view().find(role, name);
    }
    bool press(const QString& button) const { return view().press(button); }
    bool pressWhenThere(const QString& button) const
    {
        return QTest::qWaitFor([&] { return press(button); });
    }
    QString selected() const { return m_rig->listing().selectedID().value_or(QString()); }

    QString focused() const
    {
        QAccessibleInterface* const part =
            QAccessible::queryAccessibleInterface(&window())->focusChild();
        return part ? part->text(QAccessible::Name) : QString();
    }

    void type(const QString& text) const
    {
        for (const QChar letter : text)
            QTest::keyClick(&window(), letter.toLatin1());
    }

    std::unique_ptr<WorkspaceRig> m_rig;
    std::unique_ptr<WorkspaceWindow> m_workspace;
};

} // namespace mossbank

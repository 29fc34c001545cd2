// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/Accessibility.h"
#include "tests/Desktop/AccessibleDesktop.h"

#include <QObject>

#include <memory>

namespace mossbank::test {

/// A test of what programs tell assistive tools. Each of its cases has a desktop of its own, and at
/// its end nothing that was started there is left.
class AccessibilityTest : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    /// The longest that anything on a busy machine takes.
    static constexpr int kPatience = 20'000;

    AccessibleDesktop& desktop() { return *m_desktop; }
    /// Puts another in its place. Fails the case when it cannot be set up.
    void startDesktop(const AccessibleDesktop::Options& options);

    /// What hears the programs of this desktop, from the first time on that it is asked for. By
    /// then it knows whether it can.
    std::shared_ptr<Accessibility> accessibility();

    /// Gives away what a case has made of that, before its desktop ends.
    virtual void letGo() {}

private:
    std::unique_ptr<AccessibleDesktop> m_desktop;
    std::shared_ptr<Accessibility> m_accessibility;
};

} // namespace mossbank::test

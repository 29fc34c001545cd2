// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/AccessibilityTest.h"

#include <QTest>

namespace mossbank::test {

void AccessibilityTest::init()
{
    startDesktop({});
}

void AccessibilityTest::startDesktop(const AccessibleDesktop::Options& options)
{
    m_desktop.reset();
    m_desktop = std::make_unique<AccessibleDesktop>(options);
    QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
}

void AccessibilityTest::cleanup()
{
    letGo();
    m_accessibility.reset();
    const QStringList left = m_desktop->end();
    m_desktop.reset();
    QVERIFY2(left.isEmpty(), qPrintable(left.join(u'\n')));
}

std::shared_ptr<Accessibility> AccessibilityTest::accessibility()
{
    if (!m_accessibility) {
        m_accessibility = std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
        if (!m_accessibility->waitUntilKnown(kPatience))
            qFatal("it is not known whether programs can be asked");
    }
    return m_accessibility;
}

} // namespace mossbank::test

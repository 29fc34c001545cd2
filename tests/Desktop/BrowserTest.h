// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/AccessiblePrograms.h"
#include "Mossbank/Ports/AddressSource.h"
#include "tests/Desktop/AccessibilityTest.h"
#include "tests/Desktop/PageServer.h"

#include <QStringList>

#include <memory>
#include <optional>

namespace mossbank::test {

/// A test of a real browser that shows pages of a server of the test's own.
class BrowserTest : public AccessibilityTest {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

protected Q_SLOTS:
    void initTestCase();

protected:
    const PageServer& server() const { return m_server; }

    /// From now on its address can be asked for.
    void listen();
    /// The address that this browser tells within so many milliseconds. Empty when it tells none
    /// until then.
    QStringList addressOf(const QString& browser, int patience);

    /// A look of the test's own at what the program tells assistive tools: its windows.
    QCoro::Task<QList<AccessibleWindow>> windowsOf(qint64 process);
    AccessibilityBus& bus();

    void letGo() override;

private:
    struct Look {
        AccessibilityBus bus;
        AccessiblePrograms programs{bus};
    };

    PageServer m_server;
    std::unique_ptr<AddressSource> m_source;
    std::optional<Look> m_look;
};

} // namespace mossbank::test

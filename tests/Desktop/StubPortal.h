// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/PortalValues.h"
#include "tests/Desktop/StubService.h"

#include <QString>
#include <QVariant>

namespace mossbank::test {

/// A portal that tells what the user of a desktop has chosen, as far as the test says.
class StubPortal {
public:
    StubPortal();

    StubService& service() { return m_service; }

    /// All that it knows.
    PortalValues::All values;
    /// The same, when it is asked now.
    QDBusMessage answerTo(const QDBusMessage& question) const;
    /// Tells everybody of something, which it need not know.
    bool tell(const QString& space, const QString& key, const QVariant& value);
    /// Knows it from now on, and tells it.
    bool choose(const QString& space, const QString& key, const QVariant& value);
    /// One of `color-scheme`: 1 is dark, 2 is light.
    bool chooseScheme(quint32 scheme);

    static inline const QString kAppearance = QStringLiteral("org.freedesktop.appearance");
    static inline const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
    static inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

private:
    StubService m_service;
};

} // namespace mossbank::test

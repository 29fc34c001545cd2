// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/PackageKitUpdates.h"
#include "tests/Desktop/MockedPackageKit.h"
#include "tests/Desktop/TestBus.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace mossbank::test {

/// A test of what asks PackageKit. Each of its cases has a system bus of its own, with a PackageKit
/// on it that knows nothing yet.
class AskedPackageKitTest : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    static constexpr int kPatience = 20'000;
    /// For what must not come to have come.
    static constexpr int kLongEnough = 200;
    static inline const QString kExecutable = QStringLiteral("/usr/bin/heron");

    /// Makes what asks, for the program that lies there.
    void make(const QString& executable = kExecutable,
              const PackageKitUpdates::Limits& limits = {});
    /// From now on PackageKit knows which package the program is of.
    bool knowPackage();
    /// Waits until what asks knows it too.
    bool findPackage();
    /// What PackageKit was asked, without what goes before it.
    QStringList told();

    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<MockedPackageKit> m_packageKit;
    std::unique_ptr<PackageKitUpdates> m_updates;
    /// What it has answered, and how often it said that whether it can be asked has changed.
    QList<UpdateAnswer> m_answers;
    int m_changes = 0;
};

} // namespace mossbank::test

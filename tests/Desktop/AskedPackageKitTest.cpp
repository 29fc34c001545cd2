// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/AskedPackageKitTest.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace mossbank::test {

void AskedPackageKitTest::init()
{
    m_answers.clear();
    m_changes = 0;
    m_bus = std::make_unique<TestBus>(TestBus::Kind::System);
    QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    m_packageKit = std::make_unique<MockedPackageKit>(*m_bus);
    QVERIFY2(m_packageKit->problem().isEmpty(), qPrintable(m_packageKit->problem()));
}

void AskedPackageKitTest::cleanup()
{
    m_updates.reset();
    m_packageKit.reset();
    m_bus.reset();
}

void AskedPackageKitTest::make(const QString& executable, const PackageKitUpdates::Limits& limits)
{
    m_updates = std::make_unique<PackageKitUpdates>(executable, limits);
    connect(m_updates.get(), &Updates::checked, this,
            [this](const UpdateAnswer& answer) { m_answers.append(answer); });
    connect(m_updates.get(), &Updates::canCheckForUpdatesChanged, this, [this] { ++m_changes; });
}

bool AskedPackageKitTest::knowPackage()
{
    return m_packageKit->behave(u"SearchFiles"_s,
                                {MockedPackageKit::package(u"heron;1.0-1;amd64;manual:marsh"_s),
                                 MockedPackageKit::finished()});
}

bool AskedPackageKitTest::findPackage()
{
    return QTest::qWaitFor([&] { return m_updates->canCheckForUpdates(); }, kPatience);
}

QStringList AskedPackageKitTest::told()
{
    QStringList asked;
    for (const QString& call : m_packageKit->told()) {
        if (!call.startsWith(u"CreateTransaction"_s) && !call.startsWith(u"SetHints"_s))
            asked.append(call);
    }
    return asked;
}

} // namespace mossbank::test

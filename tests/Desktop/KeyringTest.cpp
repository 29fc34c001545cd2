// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/KeyringTest.h"

#include "tests/Contract/Contract.h"

#include <QTest>

namespace mossbank::test {

void KeyringTest::init()
{
    startKeyring({});
}

void KeyringTest::cleanup()
{
    m_keyring.reset();
}

void KeyringTest::startKeyring(const TestKeyring::Options& options)
{
    m_keyring.reset();
    m_keyring = std::make_unique<TestKeyring>(options);
    QVERIFY2(m_keyring->problem().isEmpty(), qPrintable(m_keyring->problem()));
}

QString KeyringTest::refusalOf(Keychain& keychain)
{
    return failureOf([&] { VaultKey::load(keychain, kService, kAccount); });
}

} // namespace mossbank::test

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/VaultKey.h"
#include "MossbankCore/Ports/Keychain.h"
#include "tests/Desktop/TestKeyring.h"

#include <QObject>

#include <memory>

namespace mossbank::test {

/// A test of keychains. Each of its cases has a keyring of its own.
class KeyringTest : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    static inline const QString kService = VaultKey::kService;
    static inline const QString kAccount = VaultKey::kAccount;

    TestKeyring& keyring() { return *m_keyring; }
    /// Puts another in its place. Fails the case when it cannot be set up.
    void startKeyring(const TestKeyring::Options& options);

    /// What the vault says when it gets no key from there. Null when it gets one.
    static QString refusalOf(Keychain& keychain);

private:
    std::unique_ptr<TestKeyring> m_keyring;
};

} // namespace mossbank::test

// SPDX-License-Identifier: Apache-2.0
//
// A program that starts, one of several at once: loads the key of an account and prints it. It runs
// on a keyring of the tests' own alone.
//
//   keychain_starter ACCOUNT [SECONDS]     SECONDS: how long it waits for the user
#include "Mossbank/Platform/Linux/SecretServiceKeychain.h"
#include "MossbankCore/Library/VaultKey.h"
#include "MossbankCore/Support/Failure.h"

#include <QByteArray>
#include <QString>

#include <cstdio>

using namespace mossbank;

int main(int argc, char* argv[])
{
    if (argc < 2)
        return 2;
    try {
        SecretServiceKeychain::Patience patience;
        if (argc > 2)
            patience.user = std::chrono::seconds(QByteArray(argv[2]).toInt());
        SecretServiceKeychain keychain(patience);
        const SymmetricKey key =
            VaultKey::load(keychain, VaultKey::kService, QString::fromLocal8Bit(argv[1]));
        const QByteArray bytes(reinterpret_cast<const char*>(key.bytes().data()),
                               SymmetricKey::kSize);
        std::puts(bytes.toHex().constData());
    } catch (const Failure& failure) {
        std::fputs(failure.what(), stderr);
        return 1;
    }
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/SymmetricKey.h"

#include <QString>

namespace mossbank {

class Keychain;

/// The one key of all the user's pictures on this machine. It is random, kept in the keychain and
/// nowhere else.
class VaultKey {
public:
    VaultKey() = delete;

    /// Under which the program keeps its key.
    static inline const QString kService = QStringLiteral("local.burrow.desktop.images");
    static inline const QString kAccount = QStringLiteral("library");

    /// The key in the keychain, made and put there when there is none yet.
    ///
    /// A key of the wrong size is never replaced: every picture sealed with it would be lost, and
    /// that is for the user to decide.
    ///
    /// Threading: waits for the keychain, and with it perhaps for the user.
    /// Errors: StoreError.
    static SymmetricKey load(Keychain& keychain, const QString& service, const QString& account);
};

} // namespace mossbank

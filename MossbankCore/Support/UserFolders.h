// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace mossbank {

/// The user's own folders, as the XDG Base Directory Specification lays them down: XDG_DATA_HOME
/// and XDG_CONFIG_HOME count where they are absolute. Home is what HOME names, or else the list of
/// users. The root of all folders, which HOME is where nobody has set it, is nobody's own.
///
/// Threading: any thread while nobody changes the environment.
/// Errors: Failure where there is none.
class UserFolders {
public:
    UserFolders() = delete;

    /// Absolute path of the folder for application data, which need not be there.
    static QString data();

    /// Absolute path of the folder for choices, which need not be there.
    static QString configuration();
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace mossbank {

/// Where the user's library is.
class LibraryLocation {
public:
    LibraryLocation() = delete;

    /// Path of the library's folder, which need not exist yet: `Mossbank` in the user's folder
    /// for application data, or `Burrow` there when that holds a library. A library begun under
    /// the program's first name goes on being used where it is. Throws Failure where the user has
    /// no such folder.
    static QString library();
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

#include <QFuture>
#include <QUrl>

namespace mossbank {

/// The program in which the user looks at folders.
///
/// Threading: the main thread.
class FileManager {
public:
    FileManager() = default;
    virtual ~FileManager() = default;
    FileManager(const FileManager&) = delete;
    FileManager& operator=(const FileManager&) = delete;

    virtual Availability availability() const = 0;

    /// Opens the folder of that file with the file selected, or the folder alone where that is all
    /// that can be had. Finishes when the folder is being opened, or with a Failure.
    virtual QFuture<void> show(const QUrl& file) = 0;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusLink.h"

#include <QPromise>
#include <QString>

#include <chrono>
#include <memory>

namespace mossbank {

/// One file being shown: by the file manager of the desktop, or else its folder by the program that
/// folders are opened with. The session bus is connected to for as long as that takes.
///
/// Threading: the main thread. Nothing waits.
/// Owns: itself while it waits for an answer, so that it may be let go at any time.
class FileShowing final : public std::enable_shared_from_this<FileShowing> {
public:
    struct Limits {
        /// For the file manager, which the desktop may have to start first.
        std::chrono::milliseconds service = std::chrono::seconds(5);
        /// For the start of the other.
        std::chrono::milliseconds opening = std::chrono::seconds(10);
    };

    /// `file`: the path of it.
    FileShowing(QString file, const Limits& limits);

    /// Once.
    QFuture<void> begin();
    /// The future is cancelled, and the folder is not opened any more.
    void stop();

private:
    QCoro::Task<> run();
    QCoro::Task<bool> askFileManager(bool isFileThere);
    QCoro::Task<QString> openFolder();
    void finish(const QString& problem);

    QString m_file;
    QString m_folder;
    Limits m_limits;
    BusLink m_bus;
    QPromise<void> m_promise;
    bool m_hasEnded = false;
};

} // namespace mossbank

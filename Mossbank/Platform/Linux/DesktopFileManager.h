// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/FileShowing.h"
#include "Mossbank/Ports/FileManager.h"

#include <memory>
#include <vector>

namespace mossbank {

/// The file manager of the desktop, by the interface that file managers share on the session bus.
/// Where none answers there, the program that the user opens folders with.
///
/// Which of them there is shows only when one is asked, so it is always available.
class DesktopFileManager final : public FileManager {
public:
    explicit DesktopFileManager(const FileShowing::Limits& limits = {});
    ~DesktopFileManager() override;

    Availability availability() const override { return {}; }
    QFuture<void> show(const QUrl& file) override;

private:
    FileShowing::Limits m_limits;
    /// Those under way.
    std::vector<std::weak_ptr<FileShowing>> m_showings;
};

} // namespace mossbank

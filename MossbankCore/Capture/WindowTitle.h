// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace mossbank {

/// What of a window's title says something about the screenshot.
class WindowTitle {
public:
    WindowTitle() = delete;

    /// `title` without the application's name at its end, and of at most 160 characters, cut
    /// between words where it can be. Absent when nothing worth keeping is left: an empty title,
    /// the bare name of the application, a "New Tab".
    static std::optional<QString> worthKeeping(QStringView title, QStringView app);
};

} // namespace mossbank

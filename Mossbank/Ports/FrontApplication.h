// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Application.h"
#include "Mossbank/Ports/Availability.h"

#include <QObject>

#include <optional>

namespace mossbank {

/// The application that the user is working in.
///
/// Threading: the main thread.
/// Errors: `current` throws a Failure when the desktop has gone; it looks for it anew first.
class FrontApplication : public QObject {
    Q_OBJECT

public:
    virtual Availability availability() const = 0;

    /// As it is now, not as it was last heard of. Absent when no window is active.
    virtual std::optional<Application> current() = 0;

Q_SIGNALS:
    /// Another application than before came to the front.
    void activated(const mossbank::Application& application);
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Application.h"
#include "Mossbank/Ports/Availability.h"

#include <QFuture>
#include <QString>

#include <optional>

namespace mossbank {

/// Has the user choose one of the applications installed on this machine.
///
/// Threading: the main thread.
/// Errors: a Failure through the future where there is no way to ask.
class ApplicationChooser {
public:
    ApplicationChooser() = default;
    virtual ~ApplicationChooser() = default;
    ApplicationChooser(const ApplicationChooser&) = delete;
    ApplicationChooser& operator=(const ApplicationChooser&) = delete;

    virtual Availability availability() const = 0;

    /// `title` says what it is chosen for. Absent when the user chose none, and at once while the
    /// user is choosing already.
    virtual QFuture<std::optional<Application>> choose(const QString& title) = 0;
};

} // namespace mossbank

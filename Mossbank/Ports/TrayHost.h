// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

#include <QObject>

namespace mossbank {

/// The place that this desktop has for the icons of programs. Many have none, and at login it
/// mostly comes after the programs.
///
/// Threading: the main thread. Nothing waits.
/// Errors: none.
class TrayHost : public QObject {
    Q_OBJECT

public:
    /// Whether an icon would be seen now. Not as long as that is not known.
    virtual Availability availability() const = 0;

Q_SIGNALS:
    /// There is one now, or there is none any more.
    void availabilityChanged();
};

} // namespace mossbank

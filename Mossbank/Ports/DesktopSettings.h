// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

#include <QObject>

namespace mossbank {

/// What the user has chosen for all programs of the desktop and Qt does not tell.
///
/// Threading: the main thread.
/// Errors: none; what is not known is as if nothing had been chosen.
class DesktopSettings : public QObject {
    Q_OBJECT

public:
    enum class ColourScheme { NoPreference, Light, Dark };

    using QObject::QObject;

    virtual Availability availability() const = 0;
    virtual ColourScheme colourScheme() const = 0;
    /// Nothing is to move that need not.
    virtual bool reducesMotion() const = 0;

Q_SIGNALS:
    /// Either is another than before.
    void changed();
};

} // namespace mossbank

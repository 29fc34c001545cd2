// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Application.h"
#include "Mossbank/Ports/Availability.h"

#include <QList>
#include <QString>

namespace mossbank {

/// An application that users find in their menus.
struct InstalledApplication {
    Application application;
    /// The name of its icon in the desktop's icon theme, or the path of a picture. Empty when it
    /// has none.
    QString icon = {};

    friend bool operator==(const InstalledApplication&, const InstalledApplication&) = default;
};

/// The applications of this machine that have windows of their own.
///
/// Threading: the main thread.
/// Errors: none.
class InstalledApplications {
public:
    InstalledApplications() = default;
    virtual ~InstalledApplications() = default;
    InstalledApplications(const InstalledApplications&) = delete;
    InstalledApplications& operator=(const InstalledApplications&) = delete;

    virtual Availability availability() const = 0;

    /// As it is now, in no order. No identity is empty and none comes twice.
    virtual QList<InstalledApplication> list() const = 0;
};

} // namespace mossbank

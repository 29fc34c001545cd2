// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Application.h"
#include "Mossbank/Ports/Availability.h"

#include <QFuture>
#include <QString>
#include <QStringList>

#include <optional>

namespace mossbank {

/// The address of the page that a browser shows.
///
/// Threading: called on the main thread; the asking is done elsewhere.
/// Errors: none. What cannot be had is absent.
class AddressSource {
public:
    AddressSource() = default;
    virtual ~AddressSource() = default;
    AddressSource(const AddressSource&) = delete;
    AddressSource& operator=(const AddressSource&) = delete;

    virtual Availability availability() const = 0;

    /// Whether this is a browser that can be asked.
    virtual bool canAsk(const QString& bundleID) const = 0;
    /// The address of the page in front: http or https, never of a private window.
    virtual QFuture<std::optional<QString>> address(const Application& browser) = 0;
    /// The names of the browsers that refused, in the order of refusal.
    virtual QFuture<QStringList> refusedNames() = 0;
};

} // namespace mossbank

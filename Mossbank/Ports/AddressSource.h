// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

#include <QFuture>
#include <QString>

namespace mossbank {

/// What became of a question for the address of a page.
struct AddressAnswer {
    enum class Kind {
        Answered,
        /// The user does not let this browser be asked.
        Refused,
        /// Anything else: no window, a private one, no answer in time.
        Failed,
    };

    Kind kind = Kind::Failed;
    /// As the browser told it, whatever it is an address of. Never empty when answered.
    QString text = {};

    static AddressAnswer answered(const QString& text)
    {
        return text.isEmpty() ? AddressAnswer() : AddressAnswer{Kind::Answered, text};
    }
    static AddressAnswer refused() { return {Kind::Refused}; }
    static AddressAnswer failed() { return {}; }

    friend bool operator==(const AddressAnswer&, const AddressAnswer&) = default;
};

/// What asks browsers for the address of the page they show.
///
/// Threading: called on the main thread, which it never holds; the asking is done elsewhere.
/// Errors: a failed answer. No future is meant to throw; whoever asks takes one that does for a
/// failed answer, for no screenshot is worth losing over an address.
class AddressSource {
public:
    AddressSource() = default;
    virtual ~AddressSource() = default;
    AddressSource(const AddressSource&) = delete;
    AddressSource& operator=(const AddressSource&) = delete;

    virtual Availability availability() const = 0;

    /// Whether this is a browser that can be asked.
    virtual bool canAsk(const QString& bundleID) const = 0;

    /// The page in the front window of that browser. Never that of a window known to be private.
    /// Gives up by itself after two seconds.
    virtual QFuture<AddressAnswer> ask(const QString& bundleID) = 0;

    /// Has browsers be ready to answer for as long as the session lasts: called when the user
    /// chooses to have addresses saved, for it may concern all that runs on the desktop. Returns
    /// what the user is to be told of it; empty when nothing.
    virtual QString switchOn() = 0;

    /// The user has taken that back: what is off from now on is left off. What is on stays on, for
    /// others may have come to need it.
    virtual void letBe() = 0;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/ApplicationCatalog.h"
#include "Mossbank/Platform/Linux/SecretTyping.h"
#include "Mossbank/Ports/Availability.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace mossbank {

/// What the programs of this session tell assistive tools, as far as it is of use here. It has a
/// thread of its own: what programs tell is heard at once, however long the main thread is busy.
///
/// Threading: any thread, but for its end.
class Accessibility {
public:
    explicit Accessibility(std::shared_ptr<ApplicationCatalog> catalog);
    ~Accessibility();
    Accessibility(const Accessibility&) = delete;
    Accessibility& operator=(const Accessibility&) = delete;

    /// Whether programs tell what is in their windows; if not, why, and `consequence`, which is a
    /// sentence for the user too.
    Availability availability(const QString& consequence) const;
    /// Why even those cannot be asked that tell anyway. Empty when they can.
    QString whyUnreachable() const;
    /// Waits until it is known whether they can, at most so many milliseconds.
    bool waitUntilKnown(int limit) const;

    /// Whether a password is being typed, as it was last heard. Has it checked for the next time.
    bool isSecretTyped() const;

    /// Hands the address of the page in the active window, which is of this browser, to `tell`, on
    /// some other thread. Absent when it does not tell.
    void askForAddress(const QString& bundleID,
                       std::function<void(std::optional<QString>)> tell) const;

    /// Has all programs of the session tell.
    void switchOn() const;
    /// No longer does so when the bus comes anew.
    void letBe() const;

private:
    class Work;
    class Thread;

    SecretTyping m_typing;
    std::unique_ptr<Thread> m_thread;
    /// Lives on the thread, and as long.
    Work* m_work = nullptr;
};

} // namespace mossbank

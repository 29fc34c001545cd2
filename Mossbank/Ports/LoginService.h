// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

#include <QString>

namespace mossbank {

/// What starts programs when the user logs in.
///
/// Threading: the main thread.
/// Errors: the two that change something throw a Failure.
class LoginService {
public:
    enum class Status {
        /// This copy of the program is started at login.
        Enabled,
        /// It is not: it never was registered, or the user switched it off in the desktop's
        /// settings.
        NotRegistered,
        /// It is registered, and the user has yet to allow it in the system's settings.
        RequiresApproval,
        /// It cannot be told.
        Unknown,
    };

    LoginService() = default;
    virtual ~LoginService() = default;
    LoginService(const LoginService&) = delete;
    LoginService& operator=(const LoginService&) = delete;

    virtual Availability availability() const = 0;

    virtual Status status() const = 0;
    /// Has this copy started at login from now on.
    virtual void registerItem() = 0;
    virtual void unregisterItem() = 0;

    /// Where this copy of the program lies. It is what tells one copy from another.
    virtual QString path() const = 0;
    /// Whether it lies there for this run only, so that nothing may be made to lead there.
    virtual bool isWithoutHome() const = 0;
};

} // namespace mossbank

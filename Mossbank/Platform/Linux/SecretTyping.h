// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDeadlineTimer>
#include <QMutex>

namespace mossbank {

/// What is known of the place that the user types into. One thread finds it out, another asks.
///
/// Threading: any thread.
class SecretTyping {
public:
    enum class Place {
        Ordinary,
        PasswordField,
        /// It is being asked. Counts as a password field for a short while; then whoever is asked
        /// has stopped and draws nothing new, and the rest of the screen is not to wait for it.
        Asked,
        /// It cannot be told which window is active.
        Unknown,
    };

    explicit SecretTyping(int limit = 1500)
        : m_limit(limit)
    {
    }

    bool isSecret() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_isPrompt || m_isCovered || m_place == Place::PasswordField ||
               m_place == Place::Unknown || (m_place == Place::Asked && !m_deadline.hasExpired());
    }

    Place place() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_place;
    }

    /// Asked again and again it has still to be answered within the limit of the first time.
    void setPlace(Place place)
    {
        const QMutexLocker lock(&m_mutex);
        if (place == Place::Asked && m_place != Place::Asked)
            m_deadline.setRemainingTime(m_limit);
        m_place = place;
    }

    /// Another window is asked, so that the limit begins anew.
    void askAnew()
    {
        const QMutexLocker lock(&m_mutex);
        m_deadline.setRemainingTime(m_limit);
        m_place = Place::Asked;
    }

    /// Whether the active window is a prompt for something secret.
    void setPrompt(bool isPrompt)
    {
        const QMutexLocker lock(&m_mutex);
        m_isPrompt = isPrompt;
    }

    /// Whether such a window is above all others.
    void setCovered(bool isCovered)
    {
        const QMutexLocker lock(&m_mutex);
        m_isCovered = isCovered;
    }

private:
    mutable QMutex m_mutex;
    int m_limit;
    Place m_place = Place::Ordinary;
    QDeadlineTimer m_deadline;
    bool m_isPrompt = false;
    bool m_isCovered = false;
};

} // namespace mossbank

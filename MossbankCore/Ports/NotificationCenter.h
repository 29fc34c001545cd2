// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace mossbank {

/// Tells those who asked for it when something of a name has happened.
///
/// Threading: the main thread.
class NotificationCenter {
public:
    using Token = quint64;
    using Receive = std::function<void(const QString& name)>;
    /// Whether what happens is told also while this program is set aside.
    enum class Delivery { Usual, Immediate };

    explicit NotificationCenter(bool isDistributed = false)
        : m_isDistributed(isDistributed)
    {
    }
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    /// Whether what it tells comes from other programs.
    bool isDistributed() const { return m_isDistributed; }

    /// `receive` is called with `name` until the observer is removed.
    Token addObserver(const QString& name, Delivery delivery, Receive receive)
    {
        m_observers.push_back({++m_lastToken, name, delivery, std::move(receive)});
        return m_lastToken;
    }

    void removeObserver(Token token)
    {
        std::erase_if(m_observers,
                      [token](const Observer& observer) { return observer.token == token; });
    }

    /// Tells that `name` has happened.
    void post(const QString& name) const
    {
        // Whoever is told may add and remove; what was removed is told no more.
        const std::vector<Observer> observers = m_observers;
        for (const Observer& observer : observers) {
            if (observer.name == name && isThere(observer.token))
                observer.receive(name);
        }
    }

    /// The names asked for, each with its delivery, in the order of asking.
    std::vector<std::pair<QString, Delivery>> observed() const
    {
        std::vector<std::pair<QString, Delivery>> names;
        for (const Observer& observer : m_observers)
            names.emplace_back(observer.name, observer.delivery);
        return names;
    }

private:
    struct Observer {
        Token token;
        QString name;
        Delivery delivery;
        Receive receive;
    };

    bool isThere(Token token) const
    {
        return std::any_of(m_observers.begin(), m_observers.end(),
                           [token](const Observer& observer) { return observer.token == token; });
    }

    bool m_isDistributed;
    Token m_lastToken = 0;
    std::vector<Observer> m_observers;
};

} // namespace mossbank

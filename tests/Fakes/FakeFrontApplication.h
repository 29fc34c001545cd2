// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/FrontApplication.h"
#include "MossbankCore/Support/Failure.h"

#include <QMetaMethod>

#include <mutex>

namespace mossbank {

/// The application in front is the one told. It may be told from any thread, to let it change in
/// the middle of other work. The first one told is in front from the start.
class FakeFrontApplication final : public FrontApplication {
public:
    /// When not empty, the desktop has gone, and this is what every question fails with.
    QString failure;

    Availability availability() const override
    {
        return failure.isEmpty() ? Availability() : Availability::missing(failure);
    }

    std::optional<Application> current() override
    {
        const std::lock_guard lock(m_mutex);
        if (!failure.isEmpty())
            throw Failure(failure);
        return m_current;
    }

    /// Without a word to anybody.
    void setCurrent(const std::optional<Application>& application)
    {
        const std::lock_guard lock(m_mutex);
        m_current = application;
        if (!m_lastTold)
            m_lastTold = application;
    }

    /// As a desktop does it: the application is in front, and whoever listens hears of it, unless
    /// it is the one that was told of last.
    void activate(const Application& application)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_current = application;
            if (m_lastTold == application)
                return;
            m_lastTold = application;
        }
        Q_EMIT activated(application);
    }

    /// How many listen for a switch.
    int listeners() const
    {
        return receivers(QMetaMethod::fromSignal(&FrontApplication::activated)
                             .methodSignature()
                             .prepend('2')
                             .constData());
    }

private:
    mutable std::mutex m_mutex;
    std::optional<Application> m_current;
    std::optional<Application> m_lastTold;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/ImageVault.h"

#include <QSemaphore>

#include <atomic>

namespace mossbank {

/// Seals by changing nothing, and can be told to hold a save open in the middle.
class FakeVault final : public ImageVault {
public:
    void hold() { m_holds = true; }
    void release()
    {
        m_holds = false;
        m_released.release();
    }
    /// Whether a save is being held.
    bool isHolding() const { return m_isHolding; }

    QByteArray sealed(const QByteArray& jpeg) const override
    {
        if (m_holds) {
            m_isHolding = true;
            m_released.acquire();
            m_isHolding = false;
        }
        return jpeg;
    }

private:
    std::atomic_bool m_holds = false;
    mutable std::atomic_bool m_isHolding = false;
    mutable QSemaphore m_released;
};

} // namespace mossbank

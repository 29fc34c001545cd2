// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSemaphore>

#include <atomic>
#include <functional>

namespace mossbank {

/// Stands before OpenSSL's random numbers in a test program, so that a test is there when a
/// picture is sealed: each sealing begins with a nonce.
///
/// Threading: any thread; what is set counts for the sealings that begin afterwards.
class NonceHook {
public:
    NonceHook() = delete;

    /// Called for each nonce, on the thread that seals. No nonce is given where it returns false.
    static void set(std::function<bool()> hook);
    static void remove();
};

/// Can hold the sealing of a picture open in the middle of a save.
class SealingHold {
public:
    SealingHold()
    {
        NonceHook::set([this] { return pass(); });
    }
    ~SealingHold() { NonceHook::remove(); }
    Q_DISABLE_COPY_MOVE(SealingHold)

    void hold() { m_holds = true; }
    void release()
    {
        m_holds = false;
        m_released.release();
    }
    /// Whether a save is being held.
    bool isHolding() const { return m_isHolding; }

private:
    bool pass()
    {
        if (m_holds) {
            m_isHolding = true;
            m_released.acquire();
            m_isHolding = false;
        }
        return true;
    }

    std::atomic_bool m_holds = false;
    std::atomic_bool m_isHolding = false;
    QSemaphore m_released;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/AccessiblePrograms.h"
#include "Mossbank/Platform/Linux/SecretTyping.h"
#include "Mossbank/Platform/Linux/X11ActiveWindow.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>

namespace mossbank {

/// Follows the focus in the active window, so that it is known at any time whether a password is
/// being typed. Programs tell of each change; whenever another window becomes active, and when a
/// program does not tell, the focused object is looked for.
///
/// Threading: that of the bus.
class FocusWatch final : public QObject {
    Q_OBJECT

public:
    /// All of them outlive it.
    FocusWatch(AccessibilityBus& bus, AccessiblePrograms& programs, X11ActiveWindow& window,
               SecretTyping& typing);

    /// Asks whether what is known still holds. A field may become another kind of field, or go,
    /// without a word from its program.
    void check();

private:
    /// What a search for the focused object found; no object when nothing has the focus.
    struct Found {
        std::optional<Accessible> object;
        bool isPassword = false;
    };

    void followWindow();
    void followOverlays();
    void followFocus(const QString& service, const QString& path, bool isGained);
    QCoro::Task<> followStranger(Accessible object, bool isGained);
    void takeEvent(const Accessible& object, bool isGained);
    /// `before`: what had it until then.
    QCoro::Task<> takeFocused(Accessible object, std::optional<Accessible> before);
    QCoro::Task<bool> isInFront(Accessible object);
    QCoro::Task<> checkFocused();
    QCoro::Task<> look();
    void lookOnceMore();
    bool isLooking() const { return m_lookTurn == m_turn; }
    void take(const Found& found);
    Asked<Found> find(qint64 process, QString title);
    Asked<Found> findIn(Accessible window);
    void lookAgainSoon();

    AccessibilityBus& m_bus;
    AccessiblePrograms& m_programs;
    X11ActiveWindow& m_window;
    SecretTyping& m_typing;
    std::optional<ActiveWindow> m_active;
    std::optional<Accessible> m_focused;
    /// Names on the bus of the active window's program.
    QStringList m_services;
    bool m_hasManyWindows = false;
    /// All that were ever asked, and whether that program was not among them before it came to
    /// the front this time.
    QSet<QString> m_met;
    bool m_isNew = false;
    /// Rises with all that makes an answer under way worthless.
    int m_turn = 0;
    /// That of the search under way.
    static constexpr int kNoTurn = -1;
    int m_lookTurn = kNoTurn;
    bool m_areOverlaysKnown = false;
    int m_attempts = 0;
    QTimer m_again;
    QElapsedTimer m_sinceLook;
    QElapsedTimer m_sinceCheck;
};

} // namespace mossbank

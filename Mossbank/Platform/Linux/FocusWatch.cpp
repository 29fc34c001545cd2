// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/FocusWatch.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/SecretPrompts.h"
#include "Mossbank/Platform/Linux/WindowSearch.h"

#include <algorithm>

namespace mossbank {

namespace {

using Place = SecretTyping::Place;

constexpr int kBetweenChecks = 250;
/// Where nothing has the focus all of a window may have to be searched.
constexpr int kBetweenLooks = 2000;
constexpr int kFirstAttempt = 150;
constexpr int kMostAttempts = 5;
/// Within a second.
constexpr int kAttemptsToWake = 3;

} // namespace

FocusWatch::FocusWatch(AccessibilityBus& bus, AccessiblePrograms& programs, X11ActiveWindow& window,
                       SecretTyping& typing)
    : m_bus(bus)
    , m_programs(programs)
    , m_window(window)
    , m_typing(typing)
{
    m_again.setSingleShot(true);
    connect(&m_again, &QTimer::timeout, this, &FocusWatch::lookOnceMore);
    connect(&window, &X11ActiveWindow::changed, this, &FocusWatch::followWindow);
    connect(&window, &X11ActiveWindow::overlaysChanged, this, &FocusWatch::followOverlays);
    connect(&bus, &AccessibilityBus::focusChanged, this, &FocusWatch::followFocus);
    connect(&bus, &AccessibilityBus::opened, this, [this] {
        m_programs.forget();
        m_met.clear();
        m_active.reset();
        followWindow();
    });
    // Nobody can be asked, so there is nothing to wait for.
    connect(&bus, &AccessibilityBus::notFound, this, [this] {
        if (m_typing.place() == Place::Asked)
            m_typing.setPlace(Place::Ordinary);
    });
    // What was known of the field in front stands until another window is: it is on the screen
    // still.
    connect(&bus, &AccessibilityBus::closed, this, [this] {
        ++m_turn;
        m_focused.reset();
        m_services.clear();
    });
    connect(&bus, &AccessibilityBus::programsChanged, this, [this] {
        if (!m_focused)
            lookOnceMore();
    });
    followWindow();
    followOverlays();
}

void FocusWatch::followWindow()
{
    const auto before = std::exchange(m_active, m_window.read());
    if (!m_active) {
        ++m_turn;
        m_typing.setPlace(Place::Unknown);
        return;
    }
    m_typing.setPrompt(isSecretPrompt(m_active->owner.windowClass));
    if (before && before->id == m_active->id && before->owner == m_active->owner)
        return;
    ++m_turn;
    m_attempts = 0;
    m_focused.reset();
    m_services.clear();
    m_hasManyWindows = false;
    m_isNew = false;
    // While the bus is only being looked for, nothing is known of any window.
    const bool canBeAsked = m_bus.isOpen() || !m_bus.hasLooked();
    if (!canBeAsked || !m_active->owner.process) {
        m_typing.setPlace(Place::Ordinary);
        return;
    }
    m_typing.askAnew();
    look();
}

void FocusWatch::followOverlays()
{
    const auto overlays = m_window.overlays();
    m_areOverlaysKnown = overlays.has_value();
    // What was seen stands until it is seen to have gone.
    if (overlays) {
        m_typing.setCovered(std::ranges::any_of(*overlays, [](const X11Overlay& overlay) {
            // Some lockers do not say what they are.
            return isSecretPrompt(overlay.windowClass) || overlay.hidesDisplay;
        }));
    }
}

void FocusWatch::followFocus(const QString& service, const QString& path, bool isGained)
{
    if (!m_active || !m_active->owner.process)
        return;
    if (m_services.contains(service))
        takeEvent({service, path}, isGained);
    else if (isGained)
        followStranger({service, path}, isGained);
}

/// A program that came to the bus after its window came to the front, or one that is not in front.
QCoro::Task<> FocusWatch::followStranger(Accessible object, bool isGained)
{
    const xcb_window_t window = m_active->id;
    const auto isIts = co_await m_programs.isOf(object.service, *m_active->owner.process);
    if (!isIts.value_or(false) || !m_active || m_active->id != window)
        co_return;
    if (!m_services.contains(object.service))
        m_services.append(object.service);
    takeEvent(object, isGained);
}

void FocusWatch::takeEvent(const Accessible& object, bool isGained)
{
    if (isGained) {
        ++m_turn;
        m_typing.setPlace(Place::Asked);
        takeFocused(object, std::exchange(m_focused, std::nullopt));
    } else if (object == m_focused) {
        m_typing.setPlace(Place::Asked);
        look();
    }
}

QCoro::Task<> FocusWatch::takeFocused(Accessible object, std::optional<Accessible> before)
{
    const int turn = m_turn;
    const auto role = co_await askRolePatiently(m_bus, object);
    const bool isFront = !m_hasManyWindows || co_await isInFront(object);
    if (turn != m_turn)
        co_return;
    if (!isFront) {
        // It happened in a window behind, so what had the focus in front has it still.
        m_focused = before;
        if (before)
            checkFocused();
        else
            look();
        co_return;
    }
    if (!role) {
        lookAgainSoon();
        co_return;
    }
    take({object, *role == static_cast<quint32>(AccessibleRole::PasswordText)});
}

/// Whether it is in the active window, or may be: of its windows behind, too, a program tells what
/// has the focus there.
QCoro::Task<bool> FocusWatch::isInFront(Accessible object)
{
    const auto active = m_window.read();
    if (!active || !active->owner.process)
        co_return true;
    const auto roots = co_await m_programs.rootsOf(*active->owner.process);
    QList<Accessible> all;
    QList<Accessible> front;
    for (const Accessible& root : roots.value_or(QList<Accessible>())) {
        const auto windows = co_await askWindows(m_bus, root);
        if (!windows)
            co_return true;
        for (const AccessibleWindow& window : *windows)
            all.append(window.object);
        for (const AccessibleWindow& window : windowsInFront(*windows, active->title))
            front.append(window.object);
    }
    const auto within = co_await windowOf(m_bus, object, all);
    co_return !within || front.contains(*within);
}

void FocusWatch::take(const Found& found)
{
    m_attempts = 0;
    m_focused = found.object;
    m_typing.setPlace(found.isPassword ? Place::PasswordField : Place::Ordinary);
}

void FocusWatch::check()
{
    if (m_sinceCheck.isValid() && !m_sinceCheck.hasExpired(kBetweenChecks))
        return;
    m_sinceCheck.start();
    // One answer of the server that came too late must not hold until another window is active.
    if (!m_active)
        followWindow();
    if (!m_areOverlaysKnown)
        followOverlays();
    if (!m_active || !m_bus.isOpen())
        return;
    if (m_focused)
        checkFocused();
    else if (!isLooking() && (!m_sinceLook.isValid() || m_sinceLook.hasExpired(kBetweenLooks)))
        look();
}

QCoro::Task<> FocusWatch::checkFocused()
{
    const int turn = m_turn;
    const Accessible object = *m_focused;
    const auto states = co_await askStates(m_bus, object);
    const auto role = co_await askRole(m_bus, object);
    if (turn != m_turn)
        co_return;
    const bool isFocused = states && states->has(AccessibleState::Focused);
    if (isFocused && role) {
        take({object, *role == static_cast<quint32>(AccessibleRole::PasswordText)});
    } else if (isFocused && m_typing.place() == Place::PasswordField) {
        // It has the focus still and does not say any more what it is, so it is what it was.
    } else {
        // It has lost the focus, or is gone. What it was then does not stand for what has it now.
        if (!m_bus.isLeftAlone(object.service))
            m_typing.setPlace(Place::Asked);
        look();
    }
}

/// Looks for what has the focus in the active window. What was known before stands until there is
/// an answer: a program that has stopped has its field on the screen still.
QCoro::Task<> FocusWatch::look()
{
    if (!m_active || !m_active->owner.process || !m_bus.isOpen())
        co_return;
    const int turn = ++m_turn;
    m_lookTurn = turn;
    m_sinceLook.start();
    // Its title has changed since it came to the front.
    const auto now = m_window.read();
    if (now && now->id == m_active->id)
        m_active->title = now->title;
    const auto found = co_await find(*m_active->owner.process, m_active->title);
    if (turn != m_turn)
        co_return;
    m_lookTurn = kNoTurn;
    if (!found) {
        lookAgainSoon();
        co_return;
    }
    // A program may come to the bus later than to the screen, and a browser shows what is in its
    // windows only some time after it was asked first.
    if (found->object) {
        take(*found);
        co_return;
    }
    lookAgainSoon();
    if (m_isNew && m_attempts <= kAttemptsToWake)
        co_return;
    m_focused.reset();
    m_typing.setPlace(Place::Ordinary);
}

Asked<FocusWatch::Found> FocusWatch::find(qint64 process, QString title)
{
    const auto roots = co_await m_programs.rootsOf(process);
    if (!roots)
        co_return std::nullopt;
    Found found;
    QStringList services;
    qsizetype windowCount = 0;
    for (const Accessible& root : *roots) {
        services.append(root.service);
        m_isNew |= !m_met.contains(root.service);
        const auto windows = co_await askWindows(m_bus, root);
        if (!windows)
            co_return std::nullopt;
        // Chromium has further ones that are nobody's, without a name.
        windowCount += std::ranges::count_if(
            *windows, [](const AccessibleWindow& window) { return !window.name.isEmpty(); });
        for (const AccessibleWindow& window : windowsInFront(*windows, title)) {
            // Chromium and its kin begin to look into their pages only when somebody asks for more
            // than names and states.
            co_await askAttributes(m_bus, window.object);
            const auto inside = co_await findIn(window.object);
            if (!inside)
                co_return std::nullopt;
            if (inside->object && !found.isPassword)
                found = *inside;
        }
    }
    if (m_active && m_active->owner.process == process) {
        m_services = services;
        m_hasManyWindows = windowCount > 1;
    }
    for (const QString& service : std::as_const(services))
        m_met.insert(service);
    co_return found;
}

Asked<FocusWatch::Found> FocusWatch::findIn(Accessible window)
{
    const auto objects = co_await searchWindow(m_bus, window, AccessibleState::Focused);
    if (!objects)
        co_return std::nullopt;
    Found found;
    for (const Accessible& object : *objects) {
        const auto role = co_await askRole(m_bus, object);
        if (!role)
            co_return std::nullopt;
        const bool isPassword = *role == static_cast<quint32>(AccessibleRole::PasswordText);
        if (!found.object || isPassword)
            found = {object, isPassword};
    }
    co_return found;
}

/// A search of a slow program is let come to its end: begun anew each time that somebody wants
/// one, it never would.
void FocusWatch::lookOnceMore()
{
    if (isLooking())
        lookAgainSoon();
    else
        look();
}

void FocusWatch::lookAgainSoon()
{
    if (m_attempts >= kMostAttempts)
        return;
    m_again.start(kFirstAttempt << m_attempts);
    ++m_attempts;
}

} // namespace mossbank

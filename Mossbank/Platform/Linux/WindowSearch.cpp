// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/WindowSearch.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"

#include <QDeadlineTimer>
#include <QQueue>

namespace mossbank {

namespace {

/// A form has some tens of objects. A table of thousands is not to be walked through for a caret.
constexpr int kMostObjects = 400;
constexpr int kMostChildren = 60;
constexpr int kLimit = 700;

struct Wanted {
    std::optional<AccessibleState> state;
    std::optional<AccessibleRole> role;
};

/// The list has one object at most.
Asked<QList<Accessible>> walk(AccessibilityBus& bus, Accessible window, Wanted wanted)
{
    const QDeadlineTimer deadline(kLimit);
    QQueue<Accessible> open;
    open.enqueue(window);
    bool isWhole = true;
    for (int count = 0; !open.isEmpty() && count < kMostObjects && !deadline.hasExpired();
         ++count) {
        const Accessible object = open.dequeue();
        const auto states = co_await askStates(bus, object);
        // One that has gone meanwhile is none; but nothing is known of a program that is silent.
        if (!states && (object == window || bus.isLeftAlone(object.service)))
            co_return std::nullopt;
        if (!states || (object != window && !states->has(AccessibleState::Showing)))
            continue;
        bool isFound = !wanted.state || states->has(*wanted.state);
        if (isFound && wanted.role)
            isFound = co_await askRole(bus, object) == static_cast<quint32>(*wanted.role);
        if (isFound)
            co_return QList{object};
        const auto children = co_await askChildren(bus, object);
        if (children)
            open += children->mid(0, kMostChildren);
        else if (bus.isLeftAlone(object.service))
            co_return std::nullopt;
        isWhole &= !children || children->size() <= kMostChildren;
    }
    // It may be in what was not looked at.
    if (!isWhole || !open.isEmpty())
        co_return std::nullopt;
    co_return QList<Accessible>();
}

} // namespace

Asked<QList<Accessible>> searchWindow(AccessibilityBus& bus, Accessible window,
                                      AccessibleState state)
{
    const auto matches = co_await askMatches(bus, window, state);
    if (matches)
        co_return matches;
    const Wanted wanted = {.state = state, .role = {}};
    co_return co_await walk(bus, window, wanted);
}

Asked<Accessible> walkTo(AccessibilityBus& bus, Accessible window, AccessibleRole role)
{
    const Wanted wanted = {.state = {}, .role = role};
    const auto found = co_await walk(bus, window, wanted);
    if (!found || found->isEmpty())
        co_return std::nullopt;
    co_return found->constFirst();
}

Asked<Accessible> windowOf(AccessibilityBus& bus, Accessible object, QList<Accessible> windows)
{
    constexpr int kDeepest = 200;
    std::optional<Accessible> within = object;
    for (int depth = 0; within && depth < kDeepest; ++depth) {
        if (windows.contains(*within))
            co_return within;
        within = co_await askParent(bus, *within);
    }
    co_return std::nullopt;
}

} // namespace mossbank

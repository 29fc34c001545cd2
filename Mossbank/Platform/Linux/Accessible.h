// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <qcoro/qcorotask.h>

#include <optional>

namespace mossbank {

class AccessibilityBus;

/// Something in a window of a program: the program's name on the bus, and the object's in it.
struct Accessible {
    QString service;
    QString path;

    friend bool operator==(const Accessible&, const Accessible&) = default;
};

/// The numbers that the protocol gives to what is looked for here.
enum class AccessibleRole : quint32 {
    Label = 29,
    PasswordText = 40,
    ToolBar = 63,
    WebDocument = 95,
};
enum class AccessibleState : quint32 {
    Active = 1,
    Focused = 12,
    Showing = 25,
};

/// The states of an accessible object.
struct AccessibleStates {
    quint64 bits = 0;

    bool has(AccessibleState state) const
    {
        return (bits >> static_cast<quint32>(state) & 1U) != 0;
    }
};

/// A window as a program shows it to assistive tools.
struct AccessibleWindow {
    Accessible object;
    QString name;
    bool isActive = false;

    friend bool operator==(const AccessibleWindow&, const AccessibleWindow&) = default;
};

/// Questions to programs. `bus` outlives them. An answer that did not come, or is not what such an
/// answer has to be, is absent.
///
/// Threading: that of the bus.
template <typename T>
using Asked = QCoro::Task<std::optional<T>>;

Asked<quint32> askRole(AccessibilityBus& bus, Accessible object);
/// The same of an object that has just told something, so that its program is there, if busy.
Asked<quint32> askRolePatiently(AccessibilityBus& bus, Accessible object);
Asked<AccessibleStates> askStates(AccessibilityBus& bus, Accessible object);
Asked<QString> askName(AccessibilityBus& bus, Accessible object);
/// What it is in. One without a path when it is in nothing.
Asked<Accessible> askParent(AccessibilityBus& bus, Accessible object);
Asked<QList<Accessible>> askChildren(AccessibilityBus& bus, Accessible object);
Asked<QMap<QString, QString>> askAttributes(AccessibilityBus& bus, Accessible object);
/// What the window of `object` shows: where a browser says which page is in front.
Asked<Accessible> askEmbedded(AccessibilityBus& bus, Accessible object);
Asked<QMap<QString, QString>> askDocumentAttributes(AccessibilityBus& bus, Accessible document);
/// The objects below `object` that are in this state, a few at most. Absent also where the program
/// cannot search by itself.
Asked<QList<Accessible>> askMatches(AccessibilityBus& bus, Accessible object,
                                    AccessibleState state);

/// The roots of all programs on the bus.
Asked<QList<Accessible>> askPrograms(AccessibilityBus& bus);
Asked<qint64> askProcess(AccessibilityBus& bus, QString service);
/// The windows of the program with this root.
Asked<QList<AccessibleWindow>> askWindows(AccessibilityBus& bus, Accessible root);

} // namespace mossbank

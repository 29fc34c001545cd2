// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/Accessible.h"

#include <QStringList>

namespace mossbank {

/// How a browser tells of its pages.
struct Browser {
    enum class Kin {
        Firefox,
        Chromium,
        WebKit,
    };

    Kin kin;
    /// The names that its windows end in, after the title of the page.
    QStringList brands;
    /// Whether it is known how it tells a private window from any other.
    bool tellsOfPrivateWindows = true;
};

/// The browser with this desktop-file id. Absent when it is none that can be asked.
std::optional<Browser> browserOf(const QString& bundleID);

/// The key under which the document has its address.
QString addressKey(const Browser& browser);

/// Whether the title of a browser's window, as the desktop shows it, is what an ordinary window
/// has. In every language Firefox puts more there than its name in a private window.
bool hasOrdinaryTitle(const Browser& browser, const QString& title);

/// Whether the window with this title may be a private one. Chromium says that only to assistive
/// tools: by a name that does not end as the title does. It does so for a person's name, too, where
/// several use it. What it says of the tab, that it is pinned or plays a sound, stands before that
/// ending.
bool mayBePrivate(const Browser& browser, const QList<AccessibleWindow>& windows,
                  const QString& title);

/// Which of a browser's windows is the one in front with this title, if that one is surely not a
/// private one.
std::optional<AccessibleWindow> ordinaryWindow(const Browser& browser,
                                               const QList<AccessibleWindow>& windows,
                                               const QString& title);

/// Whether what a program was started with makes all its windows private, or may do so. `command`
/// is its command line as the system keeps it, and nothing when that cannot be read. Firefox may
/// be private by its settings, too.
bool isStartedPrivate(const Browser& browser, const QByteArray& command);

} // namespace mossbank

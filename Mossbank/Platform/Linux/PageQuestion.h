// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/AccessiblePrograms.h"
#include "Mossbank/Platform/Linux/ApplicationCatalog.h"
#include "Mossbank/Platform/Linux/BrowserPrivacy.h"
#include "Mossbank/Platform/Linux/X11ActiveWindow.h"

#include <memory>

namespace mossbank {

/// Asks the browser in front for the address of its page.
///
/// Threading: that of the bus.
class PageQuestion {
public:
    /// All of them outlive it.
    PageQuestion(AccessibilityBus& bus, AccessiblePrograms& programs, X11ActiveWindow& window,
                 std::shared_ptr<ApplicationCatalog> catalog);

    /// The address that the page in the active window has, which is of the browser with this
    /// identity. Absent when there is none, when the window may be a private one, and when the
    /// browser does not answer. A browser that is only beginning to look into its pages is asked
    /// again for a second and a half.
    Asked<QString> ask(QString bundleID);

private:
    struct Outcome {
        QString address = {};
        /// Whether it may be another one in a moment.
        bool isWorthAnotherTry = false;

        static Outcome never() { return {}; }
        static Outcome notYet() { return {{}, true}; }
    };

    QCoro::Task<Outcome> askOnce(QString bundleID, Browser browser,
                                 std::optional<ActiveWindow> first);
    QCoro::Task<Outcome> askWindow(Browser browser, Accessible window);
    Asked<Accessible> findDocument(Browser browser, Accessible window);

    AccessibilityBus& m_bus;
    AccessiblePrograms& m_programs;
    X11ActiveWindow& m_window;
    std::shared_ptr<ApplicationCatalog> m_catalog;
    BrowserPrivacy m_privacy;
};

/// Whether a toolbar of this window of Firefox has what only those of its private windows have.
/// Also where that cannot be told.
QCoro::Task<bool> hasPrivateSign(AccessibilityBus& bus, Accessible window);

} // namespace mossbank

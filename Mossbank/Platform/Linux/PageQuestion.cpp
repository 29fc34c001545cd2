// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/PageQuestion.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/WindowSearch.h"

#include <QDeadlineTimer>
#include <qcoro/qcorotimer.h>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace mossbank {

namespace {

/// A browser that is asked for the first time begins to look at its own pages, and has an address
/// after some tenths of a second.
constexpr int kLimit = 1500;
constexpr std::chrono::milliseconds kBetween = 100ms;

} // namespace

PageQuestion::PageQuestion(AccessibilityBus& bus, AccessiblePrograms& programs,
                           X11ActiveWindow& window, std::shared_ptr<ApplicationCatalog> catalog)
    : m_bus(bus)
    , m_programs(programs)
    , m_window(window)
    , m_catalog(std::move(catalog))
{
}

Asked<QString> PageQuestion::ask(QString bundleID)
{
    const auto browser = browserOf(bundleID);
    const QDeadlineTimer deadline(kLimit);
    // An answer for another page than the one in front when it was asked for would be a wrong one.
    const auto first = m_window.read();
    while (browser && m_bus.isOpen()) {
        const Outcome outcome = co_await askOnce(bundleID, *browser, first);
        if (!outcome.address.isEmpty())
            co_return outcome.address;
        if (!outcome.isWorthAnotherTry || deadline.hasExpired())
            break;
        co_await QCoro::sleepFor(kBetween);
    }
    co_return std::nullopt;
}

QCoro::Task<PageQuestion::Outcome> PageQuestion::askOnce(QString bundleID, Browser browser,
                                                         std::optional<ActiveWindow> first)
{
    const auto active = m_window.read();
    if (active != first || !active || !active->owner.process)
        co_return Outcome::never();
    const Application front =
        m_catalog->application(active->owner.windowClass, active->owner.process);
    if (front.bundleID != bundleID || m_privacy.mayBePrivate(browser, *active->owner.process))
        co_return Outcome::never();
    const auto roots = co_await m_programs.rootsOf(*active->owner.process);
    if (!roots || roots->isEmpty())
        co_return Outcome::never();
    QList<AccessibleWindow> windows;
    for (const Accessible& root : *roots) {
        const auto some = co_await askWindows(m_bus, root);
        if (!some)
            co_return Outcome::never();
        windows += *some;
    }
    if (mayBePrivate(browser, windows, active->title))
        co_return Outcome::never();
    const auto window = ordinaryWindow(browser, windows, active->title);
    if (!window)
        co_return Outcome::notYet();
    const Outcome outcome = co_await askWindow(browser, window->object);
    // The tab, or the whole window, may have been changed for another meanwhile.
    co_return m_window.read() == active ? outcome : Outcome::never();
}

QCoro::Task<PageQuestion::Outcome> PageQuestion::askWindow(Browser browser, Accessible window)
{
    if (browser.kin == Browser::Kin::Firefox && co_await hasPrivateSign(m_bus, window))
        co_return Outcome::never();
    const auto document = co_await findDocument(browser, window);
    if (!document)
        co_return Outcome::notYet();
    const auto attributes = co_await askDocumentAttributes(m_bus, *document);
    if (!attributes)
        co_return Outcome::notYet();
    co_return Outcome{attributes->value(addressKey(browser)), true};
}

Asked<Accessible> PageQuestion::findDocument(Browser browser, Accessible window)
{
    const auto embedded = co_await askEmbedded(m_bus, window);
    if (embedded || browser.kin != Browser::Kin::WebKit)
        co_return embedded;
    co_return co_await walkTo(m_bus, window, AccessibleRole::WebDocument);
}

// A label among the tabs, and a button that ends the private session. Neither depends on the
// language.
QCoro::Task<bool> hasPrivateSign(AccessibilityBus& bus, Accessible window)
{
    const auto parts = co_await askChildren(bus, window);
    if (!parts)
        co_return true;
    for (const Accessible& part : *parts) {
        const auto role = co_await askRole(bus, part);
        if (!role)
            co_return true;
        if (*role != static_cast<quint32>(AccessibleRole::ToolBar))
            continue;
        const auto buttons = co_await askChildren(bus, part);
        if (!buttons)
            co_return true;
        for (const Accessible& button : *buttons) {
            const auto kind = co_await askRole(bus, button);
            const auto attributes = co_await askAttributes(bus, button);
            if (!kind || !attributes || *kind == static_cast<quint32>(AccessibleRole::Label) ||
                attributes->value(u"id"_s) == u"reset-pbm-toolbar-button")
                co_return true;
        }
    }
    co_return false;
}

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/Browsers.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

using Kin = Browser::Kin;

const QString kEdgeBrand = u"Microsoft Edge"_s;

const QHash<QString, Browser>& browsers()
{
    static const Browser kFirefox = {Kin::Firefox, {u"Mozilla Firefox"_s, u"Firefox"_s}};
    static const Browser kChromium = {Kin::Chromium, {u"Chromium"_s}};
    static const Browser kChrome = {Kin::Chromium, {u"Google Chrome"_s}};
    static const Browser kBrave = {Kin::Chromium, {u"Brave"_s}};
    static const Browser kEdge = {Kin::Chromium, {kEdgeBrand}};
    // These two make their windows in ways of their own, and nobody has seen what assistive tools
    // are told of a private one.
    static const Browser kVivaldi = {Kin::Chromium, {u"Vivaldi"_s}, false};
    static const Browser kOpera = {Kin::Chromium, {u"Opera"_s}, false};
    static const Browser kWeb = {Kin::WebKit, {}};
    static const QHash<QString, Browser> kBrowsers = {
        {u"firefox-esr"_s, kFirefox},
        {u"firefox"_s, kFirefox},
        {u"firefox_firefox"_s, kFirefox},
        {u"org.mozilla.firefox"_s, kFirefox},
        {u"chromium"_s, kChromium},
        {u"chromium-browser"_s, kChromium},
        {u"chromium_chromium"_s, kChromium},
        {u"org.chromium.Chromium"_s, kChromium},
        {u"google-chrome"_s, kChrome},
        {u"google-chrome-beta"_s, kChrome},
        {u"google-chrome-unstable"_s, kChrome},
        {u"com.google.Chrome"_s, kChrome},
        {u"com.google.ChromeDev"_s, kChrome},
        {u"brave-browser"_s, kBrave},
        {u"brave-browser-beta"_s, kBrave},
        {u"brave-browser-nightly"_s, kBrave},
        {u"brave_brave"_s, kBrave},
        {u"com.brave.Browser"_s, kBrave},
        {u"microsoft-edge"_s, kEdge},
        {u"microsoft-edge-beta"_s, kEdge},
        {u"microsoft-edge-dev"_s, kEdge},
        {u"com.microsoft.Edge"_s, kEdge},
        {u"vivaldi-stable"_s, kVivaldi},
        {u"com.vivaldi.Vivaldi"_s, kVivaldi},
        {u"opera"_s, kOpera},
        {u"opera_opera"_s, kOpera},
        {u"com.opera.Opera"_s, kOpera},
        {u"org.gnome.Epiphany"_s, kWeb},
    };
    return kBrowsers;
}

/// Edge writes its name with a mark between the words that nobody sees.
QString plain(QString title)
{
    return title.remove(QChar(0x200b)).remove(QChar(0x200e)).remove(QChar(0x200f));
}

/// How an ordinary window's title ends, what is before it being called so by the page. All of the
/// title where there is no page. Absent when no ordinary window has such a title.
std::optional<QString> endingOf(const Browser& browser, const QString& title)
{
    const bool isFirefox = browser.kin == Kin::Firefox;
    const QString dash = isFirefox ? u" — "_s : u" - "_s;
    const QStringList channels =
        isFirefox ? QStringList{QString()}
                  : QStringList{QString(), u" Beta"_s, u" Dev"_s, u" Canary"_s, u" Nightly"_s};
    for (const QString& brand : browser.brands) {
        for (const QString& channel : channels) {
            if (title == brand + channel)
                return title;
            const QString ending = dash + brand + channel;
            // "[InPrivate] - Microsoft Edge" is how that one says it.
            if (title.endsWith(ending) && !(brand == kEdgeBrand && title.endsWith(u']' + ending)))
                return ending;
        }
    }
    return {};
}

/// What a window is, by the name that it has for assistive tools, beside one with a known title.
enum class Likeness : quint8 {
    Another,
    /// Its name is that title.
    Same,
    /// An ordinary window whose page is called so, and whose tab is pinned, plays a sound or the
    /// like: Chromium says that between the page and the browser.
    InSomeState,
    MayBePrivate,
};

/// Chromium puts what makes a window private, or somebody else's, behind all the rest.
Likeness likenessOf(const Browser& browser, const QString& windowName, const QString& windowTitle)
{
    const QString name = plain(windowName);
    const QString title = plain(windowTitle);
    if (name == title)
        return Likeness::Same;
    if (browser.kin != Kin::Chromium) {
        // An empty page of Firefox is called by its name alone, and WebKit's are called as their
        // pages are, so that one may be within another by chance.
        return name.startsWith(title) ? Likeness::MayBePrivate : Likeness::Another;
    }
    const QString ending = endingOf(browser, title).value_or(title);
    const QString page = title.chopped(ending.size());
    if (page.isEmpty())
        return name.contains(title) ? Likeness::MayBePrivate : Likeness::Another;
    if (!name.contains(page))
        return Likeness::Another;
    // Something before the title may be said of the window, too.
    if (!name.endsWith(ending) || (name.endsWith(title) && !name.startsWith(page)))
        return Likeness::MayBePrivate;
    const qsizetype stateSize = name.size() - page.size() - ending.size();
    const bool isInSomeState =
        stateSize > 0 && name.startsWith(page) && !name.at(page.size()).isLetterOrNumber();
    return isInSomeState ? Likeness::InSomeState : Likeness::Another;
}

/// What a word of a command line asks for, without its dashes and what is set by it. Empty when it
/// is no option. Neither dashes nor capitals make a difference to browsers.
QByteArray optionIn(const QByteArray& word)
{
    if (!word.startsWith('-'))
        return {};
    const QByteArray bare = word.startsWith("--") ? word.mid(2) : word.mid(1);
    return bare.split('=').constFirst().toLower();
}

} // namespace

std::optional<Browser> browserOf(const QString& bundleID)
{
    const auto found = browsers().constFind(bundleID);
    return found == browsers().constEnd() ? std::nullopt : std::optional(*found);
}

QString addressKey(const Browser& browser)
{
    return browser.kin == Kin::Chromium ? u"URI"_s : u"DocURL"_s;
}

bool hasOrdinaryTitle(const Browser& browser, const QString& title)
{
    return browser.kin == Kin::WebKit || endingOf(browser, plain(title)).has_value();
}

bool mayBePrivate(const Browser& browser, const QList<AccessibleWindow>& windows,
                  const QString& title)
{
    // Of two windows with the same title the private one may be the one in front.
    return title.isEmpty() || std::ranges::any_of(windows, [&](const AccessibleWindow& window) {
               return likenessOf(browser, window.name, title) == Likeness::MayBePrivate;
           });
}

std::optional<AccessibleWindow>
ordinaryWindow(const Browser& browser, const QList<AccessibleWindow>& windows, const QString& title)
{
    if (!hasOrdinaryTitle(browser, title) || mayBePrivate(browser, windows, title))
        return {};
    QList<AccessibleWindow> same;
    QList<AccessibleWindow> inSomeState;
    for (const AccessibleWindow& window : windows) {
        const Likeness likeness = likenessOf(browser, window.name, title);
        if (likeness == Likeness::Same)
            same.append(window);
        else if (likeness == Likeness::InSomeState)
            inSomeState.append(window);
    }
    const auto isActive = [](const AccessibleWindow& window) {
        return window.isActive;
    };
    // What is taken for a state may be more of another page's title, so that it has to be active.
    const auto& candidates = same.isEmpty() ? inSomeState : same;
    if (std::ranges::count_if(candidates, isActive) == 1)
        return *std::ranges::find_if(candidates, isActive);
    // Where another says that it is the one in front, the names are of another moment.
    if (same.size() == 1 && std::ranges::none_of(windows, isActive))
        return same.constFirst();
    return {};
}

bool isStartedPrivate(const Browser& browser, const QByteArray& command)
{
    // Those of Chromium's kind tell of each private window by its name as well.
    if (command.isEmpty())
        return browser.kin != Kin::Chromium;
    static const QHash<Kin, QByteArrayList> kOptions = {
        {Kin::Firefox, {"private"}},
        {Kin::Chromium, {"incognito", "guest", "inprivate", "private", "tor"}},
        {Kin::WebKit, {"incognito-mode", "i", "private-instance", "p", "automation-mode"}},
    };
    const QByteArrayList wanted = kOptions.value(browser.kin);
    // Chromium and its kin write over theirs, with blanks between the words.
    QByteArray words = command;
    if (browser.kin == Kin::Chromium)
        words.replace(' ', '\0');
    return std::ranges::any_of(
        words.split('\0'), [&](const QByteArray& word) { return wanted.contains(optionIn(word)); });
}

} // namespace mossbank

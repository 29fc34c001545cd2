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
    static const Browser kVivaldi = {Kin::Chromium, {u"Vivaldi"_s}};
    static const Browser kOpera = {Kin::Chromium, {u"Opera"_s}};
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
    if (browser.kin == Kin::WebKit)
        return true;
    QString bare = plain(title);
    for (const QString& channel : {u" Beta"_s, u" Dev"_s, u" Canary"_s, u" Nightly"_s}) {
        if (browser.kin == Kin::Chromium && bare.endsWith(channel))
            bare.chop(channel.size());
    }
    const QString dash = browser.kin == Kin::Firefox ? u" — "_s : u" - "_s;
    return std::ranges::any_of(browser.brands, [&](const QString& brand) {
        const bool isOne = bare == brand || bare.endsWith(dash + brand);
        // "[InPrivate] - Microsoft Edge" is how that one says it.
        return isOne && !(brand == kEdgeBrand && bare.endsWith(u']' + dash + brand));
    });
}

bool mayBePrivate(const Browser& browser, const QList<AccessibleWindow>& windows,
                  const QString& title)
{
    if (title.isEmpty())
        return true;
    // Where every title ends in the browser's name, none is part of another by chance. But an empty
    // page of Firefox is called by that name alone, and WebKit's are called as their pages are.
    const bool isAnywhere = browser.kin == Kin::Chromium;
    // Of two windows with the same title the private one may be the one in front.
    return std::ranges::any_of(windows, [&](const AccessibleWindow& window) {
        return window.name != title &&
               (isAnywhere ? window.name.contains(title) : window.name.startsWith(title));
    });
}

std::optional<AccessibleWindow>
ordinaryWindow(const Browser& browser, const QList<AccessibleWindow>& windows, const QString& title)
{
    if (!hasOrdinaryTitle(browser, title) || mayBePrivate(browser, windows, title))
        return {};
    QList<AccessibleWindow> same;
    for (const AccessibleWindow& window : windows) {
        if (window.name == title)
            same.append(window);
    }
    const auto isActive = [](const AccessibleWindow& window) {
        return window.isActive;
    };
    if (std::ranges::count_if(same, isActive) == 1)
        return *std::ranges::find_if(same, isActive);
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

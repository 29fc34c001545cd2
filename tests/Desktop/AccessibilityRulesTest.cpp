// SPDX-License-Identifier: Apache-2.0
//
// What is decided about what programs tell, without any program.
#include "Mossbank/Platform/Linux/AccessiblePrograms.h"
#include "Mossbank/Platform/Linux/Browsers.h"
#include "Mossbank/Platform/Linux/SilentPrograms.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace mossbank;

namespace {

AccessibleWindow window(const QString& name, bool isActive = false)
{
    return {{u":1.1"_s, u"/"_s + name}, name, isActive};
}

} // namespace

class AccessibilityRulesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aBrowserIsKnownByItsDesktopFile_data();
    void aBrowserIsKnownByItsDesktopFile();
    void aTitleSaysWhetherAWindowIsOrdinary_data();
    void aTitleSaysWhetherAWindowIsOrdinary();
    void theWindowInFrontIsFoundUnlessItMayBePrivate_data();
    void theWindowInFrontIsFoundUnlessItMayBePrivate();
    void aTitleWithinAnotherIsNoPrivateWindow();
    void aBrowserOfWebKitSaysInItsCommandThatItIsPrivate();
    void aProgramThatIsSilentIsLeftAloneForLongerAndLonger();
    void processesOfOneSandboxAreOfOneProgram();
    void theWindowsThatMayBeInFrontAreLookedThrough();
};

void AccessibilityRulesTest::aBrowserIsKnownByItsDesktopFile_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("key");
    const auto add = [](const char* id, const QString& key) {
        QTest::newRow(id) << QString::fromLatin1(id) << key;
    };
    for (const char* id :
         {"firefox-esr", "firefox", "firefox_firefox", "org.mozilla.firefox", "org.gnome.Epiphany"})
        add(id, u"DocURL"_s);
    for (const char* id : {"chromium",
                           "chromium-browser",
                           "chromium_chromium",
                           "org.chromium.Chromium",
                           "google-chrome",
                           "google-chrome-beta",
                           "google-chrome-unstable",
                           "com.google.Chrome",
                           "com.google.ChromeDev",
                           "brave-browser",
                           "brave-browser-beta",
                           "brave-browser-nightly",
                           "brave_brave",
                           "com.brave.Browser",
                           "microsoft-edge",
                           "microsoft-edge-beta",
                           "microsoft-edge-dev",
                           "com.microsoft.Edge",
                           "vivaldi-stable",
                           "com.vivaldi.Vivaldi",
                           "opera",
                           "opera_opera",
                           "com.opera.Opera"})
        add(id, u"URI"_s);
    for (const char* id : {"", "dillo", "org.example.Alpha", "Firefox"})
        add(id, QString());
}

void AccessibilityRulesTest::aBrowserIsKnownByItsDesktopFile()
{
    QFETCH(QString, id);
    QFETCH(QString, key);
    const auto browser = browserOf(id);
    QCOMPARE(browser ? addressKey(*browser) : QString(), key);
}

void AccessibilityRulesTest::aTitleSaysWhetherAWindowIsOrdinary_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("isOrdinary");
    const auto add = [](const char* name, const QString& id, const QString& title,
                        bool isOrdinary) {
        QTest::newRow(name) << id << title << isOrdinary;
    };
    const QString firefox = u"firefox-esr"_s;
    const QString edge = u"microsoft-edge"_s;
    add("a page", firefox, u"Heron — Mozilla Firefox"_s, true);
    add("no page", firefox, u"Mozilla Firefox"_s, true);
    add("private", firefox, u"Heron — Mozilla Firefox Private Browsing"_s, false);
    add("private, no page", firefox, u"Mozilla Firefox Private Browsing"_s, false);
    add("private, German", firefox, u"Heron — Mozilla Firefox (Privater Modus)"_s, false);
    add("private, French", firefox, u"Heron — Navigation privée de Mozilla Firefox"_s, false);
    add("a page called so", firefox, u"Mozilla Firefox — Private Browsing"_s, false);
    add("nothing", firefox, QString(), false);
    add("Chromium", u"chromium"_s, u"Heron - Chromium"_s, true);
    add("Chromium, another name", u"chromium"_s, u"Heron - Chromium (Incognito)"_s, false);
    add("Chrome, beta", u"google-chrome-beta"_s, u"Heron - Google Chrome Beta"_s, true);
    add("Edge", edge, u"Heron - Profile 1 - Microsoft\u200b Edge"_s, true);
    add("Chromium, brackets", u"chromium"_s, u"Heron [1] - Chromium"_s, true);
    add("Edge, private", edge, u"Heron - [InPrivate] - Microsoft\u200b Edge"_s, false);
    add("Web", u"org.gnome.Epiphany"_s, u"Heron"_s, true);
}

void AccessibilityRulesTest::aTitleSaysWhetherAWindowIsOrdinary()
{
    QFETCH(QString, id);
    QFETCH(QString, title);
    QFETCH(bool, isOrdinary);
    const auto browser = browserOf(id);
    QVERIFY(browser);
    QCOMPARE(hasOrdinaryTitle(*browser, title), isOrdinary);
}

void AccessibilityRulesTest::theWindowInFrontIsFoundUnlessItMayBePrivate_data()
{
    QTest::addColumn<QList<AccessibleWindow>>("windows");
    QTest::addColumn<QString>("found");
    const QString title = u"Heron - Chromium"_s;
    const auto ordinary = window(title);
    const auto active = window(title, true);
    const auto add = [](const char* name, const QList<AccessibleWindow>& windows,
                        const QString& found = {}) {
        QTest::newRow(name) << windows << found;
    };
    add("none", {});
    add("the only one", {ordinary}, title);
    add("others beside", {window({}), window(u"Kingfisher - Chromium"_s), ordinary}, title);
    add("another is active", {window(u"Kingfisher - Chromium"_s, true), ordinary});
    add("both are active", {window(u"Kingfisher - Chromium"_s, true), active}, title);
    add("private", {window(title + u" (Incognito)"_s)});
    add("private, German", {window(title + u" (anonym)"_s, true)});
    add("private, said before the title", {window(u"(Incognito) "_s + title), ordinary});
    add("a private one of the same page beside", {active, window(title + u" (Incognito)"_s)});
    add("two of the same page", {ordinary, active}, title);
    add("two, none active", {ordinary, ordinary});
    add("another page alone", {window(u"Kingfisher - Chromium"_s, true)});
    const auto state = [](const QString& words, bool isActive = true) {
        return window(u"Heron - "_s + words + u" - Chromium"_s, isActive);
    };
    const auto secret = [](const QString& words, bool isActive = true) {
        return window(u"Heron - "_s + words + u" - Chromium (Incognito)"_s, isActive);
    };
    for (const QString& words :
         {u"Audio playing"_s, u"Pinned"_s, u"Part of group Birds"_s, u"Unnamed group"_s,
          u"High memory usage - 1 GB"_s, u"Permission requested, press F6 to respond"_s,
          u"Pinned - Part of group Birds - Audio playing"_s}) {
        const auto addState = [&](const QString& more, const QList<AccessibleWindow>& windows,
                                  const QString& found = {}) {
            add(qPrintable(words + more), windows, found);
        };
        addState({}, {window({}), state(words)}, state(words).name);
        addState(u", none active"_s, {state(words, false)});
        addState(u", another active"_s,
                 {window(u"Kingfisher - Chromium"_s, true), state(words, false)});
        addState(u", private"_s, {secret(words)});
        addState(u", private beside"_s, {active, secret(words, false)});
        addState(u", private behind one that says to be active"_s, {state(words), secret(words)});
        addState(u", somebody's"_s, {window(state(words).name + u" - Ada"_s, true)});
    }
    const auto longer = state(u"part two"_s);
    add("a longer title is active", {ordinary, longer});
    add("a longer title is behind", {active, state(u"part two"_s, false)}, title);
    add("a title within another", {window(u"Great Heron - about - Chromium"_s), active}, title);
    add("a title within another alone", {window(u"Great Heron - about - Chromium"_s, true)});
    add("a longer word alone", {window(u"Herons - Chromium"_s, true)});
    add("somebody's", {window(title + u" - Ada"_s, true)});
    add("somebody's beside", {active, window(title + u" - Ada"_s)});
    add("an application of the same page", {active, window(u"Heron"_s)});
}

void AccessibilityRulesTest::theWindowInFrontIsFoundUnlessItMayBePrivate()
{
    QFETCH(QList<AccessibleWindow>, windows);
    QFETCH(QString, found);
    const auto chosen = ordinaryWindow(*browserOf(u"chromium"_s), windows, u"Heron - Chromium"_s);
    QCOMPARE(chosen ? chosen->name : QString(), found);
}

void AccessibilityRulesTest::aTitleWithinAnotherIsNoPrivateWindow()
{
    const Browser web = *browserOf(u"org.gnome.Epiphany"_s);
    const auto chosen =
        ordinaryWindow(web, {window(u"The Heron"_s), window(u"Heron"_s, true)}, u"Heron"_s);
    QVERIFY(chosen);
    QCOMPARE(chosen->name, u"Heron"_s);
}

void AccessibilityRulesTest::aBrowserOfWebKitSaysInItsCommandThatItIsPrivate()
{
    const Browser web = *browserOf(u"org.gnome.Epiphany"_s);
    const auto command = [](QByteArray words) {
        return words.replace(' ', '\0');
    };
    QVERIFY(!isStartedPrivate(web, command("epiphany http://example.org")));
    QVERIFY(isStartedPrivate(web, command("epiphany --incognito-mode http://example.org")));
    QVERIFY(isStartedPrivate(web, command("epiphany -i")));
    QVERIFY2(isStartedPrivate(web, {}), "what cannot be read cannot be told");
    QVERIFY(!isStartedPrivate(*browserOf(u"chromium"_s), {}));
}

void AccessibilityRulesTest::aProgramThatIsSilentIsLeftAloneForLongerAndLonger()
{
    SilentPrograms programs;
    SilentPrograms::Instant now{};
    const QString one = u":1.1"_s;
    QVERIFY(!programs.isLeftAlone(one, now));
    for (const auto length : {1s, 2s, 4s, 8s, 16s, 16s}) {
        programs.keptSilent(one, now);
        // Another question that was on its way already.
        programs.keptSilent(one, now + 1ms);
        QVERIFY(programs.isLeftAlone(one, now + length - 1ms));
        QVERIFY(!programs.isLeftAlone(u":1.2"_s, now));
        now += length;
        QVERIFY(!programs.isLeftAlone(one, now));
    }
    programs.answered(one);
    programs.keptSilent(one, now);
    QVERIFY(!programs.isLeftAlone(one, now + 1s));
}

void AccessibilityRulesTest::processesOfOneSandboxAreOfOneProgram()
{
    const QTemporaryDir folder;
    const auto put = [&](int process, const QByteArray& text) {
        QDir().mkpath(folder.filePath(u"%1/root"_s.arg(process)));
        QFile file(folder.filePath(u"%1/root/.flatpak-info"_s.arg(process)));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) > 0);
    };
    put(1, "[Application]\nname=org.mozilla.firefox\n[Instance]\ninstance-id=17\n");
    put(2, "[Instance]\ninstance-id=17\n");
    put(3, "[Instance]\ninstance-id=18\n");
    put(4, "[Instance]\n");
    put(5, "[Instance]\n");
    QVERIFY(areOfOneProgram(1, 2, folder.path()));
    QVERIFY(!areOfOneProgram(1, 3, folder.path()));
    QVERIFY(!areOfOneProgram(4, 5, folder.path()));
    QVERIFY(!areOfOneProgram(6, 7, folder.path()));
    QVERIFY(areOfOneProgram(6, 6, folder.path()));
}

void AccessibilityRulesTest::theWindowsThatMayBeInFrontAreLookedThrough()
{
    const auto one = window(u"Heron"_s);
    const auto other = window(u"Kingfisher"_s);
    const auto active = window(u"Cormorant"_s, true);
    QCOMPARE(windowsInFront({one, other}, u"Heron"_s), QList{one});
    QCOMPARE(windowsInFront({one, other, active}, u"Heron"_s), (QList{one, active}));
    QCOMPARE(windowsInFront({one, active}, {}), QList{active});
    QCOMPARE(windowsInFront({one, other}, u"Dipper"_s), (QList{one, other}));
    const auto secret = window(u"Heron (Incognito)"_s);
    QCOMPARE(windowsInFront({secret, other}, u"Heron"_s), QList{secret});
}

QTEST_GUILESS_MAIN(AccessibilityRulesTest)
#include "AccessibilityRulesTest.moc"

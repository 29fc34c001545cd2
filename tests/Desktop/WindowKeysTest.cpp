// SPDX-License-Identifier: Apache-2.0
//
// The window of the real program by keys alone: what has them is to be seen, also once something
// that lay over it has gone.
#include "tests/Desktop/GrabbedDisplay.h"
#include "tests/Desktop/WindowTest.h"

#include <QTest>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using Role = SpokenRole;

namespace {

constexpr QRgb kAccent = qRgb(0x3f, 0x6b, 0x4f);

} // namespace

class WindowKeysTest final : public WindowTest {
    Q_OBJECT

private Q_SLOTS:
    void theMenuGivesTheKeysBack();
    void theEnlargedScreenshotGivesTheKeysBack();
    void theQuestionTakesTheKeysAndGivesThemBack();

private:
    /// Goes on by the tab key until this button has the keys.
    bool tabsTo(const QString& button);
    /// Whether it has the keys, and a frame that says so.
    bool isSeenToHaveKeys(const QString& button);
};

bool WindowKeysTest::tabsTo(const QString& button)
{
    // More than there is in the window.
    constexpr int kMostSteps = 100;
    for (int step = 0; step < kMostSteps; ++step) {
        const auto found = spoken().find(Role::Button, button);
        if (found && found->has(SpokenState::Focused))
            return true;
        if (!desktop().press({u"shift+Tab"_s}))
            return false;
    }
    return false;
}

bool WindowKeysTest::isSeenToHaveKeys(const QString& button)
{
    return soon(
        [&] {
            constexpr int kFrame = 3;
            const auto found = spoken().find(Role::Button, button);
            if (!found || !found->has(SpokenState::Focused))
                return false;
            const QRect inside = spoken().frame(*found);
            const QRect framed = inside.adjusted(-kFrame, -kFrame, kFrame, kFrame);
            return boundsOf(grabDisplay(), kAccent, framed) == framed;
        },
        button + u" framed, with the keys"_s);
}

void WindowKeysTest::theMenuGivesTheKeysBack()
{
    choose({{u"appearanceMode"_s, u"dark"_s}});
    QVERIFY(open());
    QVERIFY(tabsTo(u"Appearance: Dark"_s));
    QVERIFY(desktop().press({u"Return"_s}));
    QVERIFY(shows(Role::MenuItem, u"Light"_s));
    QVERIFY(desktop().press({u"Down"_s, u"Down"_s, u"Return"_s}));
    QVERIFY(hides(Role::MenuItem, u"Light"_s));
    QVERIFY(shows(Role::Button, u"Appearance: Light"_s));
    QVERIFY(isSeenToHaveKeys(u"Appearance: Light"_s));
    QVERIFY(desktop().press({u"Return"_s}));
    QVERIFY(shows(Role::MenuItem, u"Light"_s));
    QVERIFY(desktop().press({u"Escape"_s}));
    QVERIFY(hides(Role::MenuItem, u"Light"_s));
    QVERIFY(isSeenToHaveKeys(u"Appearance: Light"_s));
}

void WindowKeysTest::theEnlargedScreenshotGivesTheKeysBack()
{
    const QString enlarge = u"Enlarge screenshot"_s;
    choose({{u"appearanceMode"_s, u"light"_s}});
    add({.id = u"a"_s, .text = u"a heron"_s});
    QVERIFY(open());
    QVERIFY(lists(1));
    QVERIFY(tabsTo(enlarge));
    QVERIFY(isSeenToHaveKeys(enlarge));
    QVERIFY(desktop().press({u"Return"_s}));
    QVERIFY(shows(Role::Dialog, u"Enlarged screenshot of Editor"_s));
    QVERIFY(desktop().press({u"Escape"_s}));
    QVERIFY(hides(Role::Dialog, u"Enlarged screenshot of Editor"_s));
    QVERIFY(isSeenToHaveKeys(enlarge));
}

void WindowKeysTest::theQuestionTakesTheKeysAndGivesThemBack()
{
    const QString question = u"Delete this screenshot?"_s;
    const QString remove = u"Delete screenshot"_s;
    choose({{u"appearanceMode"_s, u"light"_s}});
    add({.id = u"a"_s, .text = u"a heron"_s});
    QVERIFY(open());
    QVERIFY(lists(1));
    QVERIFY(tabsTo(remove));
    QVERIFY(desktop().press({u"Return"_s}));
    QVERIFY(shows(Role::Dialog, question));
    // The way back is what the return key takes.
    QVERIFY(isSeenToHaveKeys(u"Cancel"_s));
    QVERIFY(desktop().press({u"Return"_s}));
    QVERIFY(hides(Role::Dialog, question));
    QVERIFY(isSeenToHaveKeys(remove));
    QCOMPARE(mossbank().rows().size(), 1);
    // The other way is one key on.
    QVERIFY(desktop().press({u"Return"_s}));
    QVERIFY(shows(Role::Dialog, question));
    QVERIFY(desktop().press({u"Tab"_s}));
    QVERIFY(isSeenToHaveKeys(u"Delete Screenshot"_s));
    QVERIFY(desktop().press({u"Return"_s}));
    QVERIFY(hides(Role::Dialog, question));
    QVERIFY(soon([this] { return mossbank().rows().isEmpty(); }, u"the end of the row"_s));
}

QTEST_GUILESS_MAIN(WindowKeysTest)
#include "WindowKeysTest.moc"

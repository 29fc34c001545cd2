// SPDX-License-Identifier: Apache-2.0
//
// Prompts for something secret and lockers, which are known by the class of their windows.
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "Mossbank/Platform/Linux/X11ActiveWindow.h"
#include "tests/Desktop/AccessibilityTest.h"
#include "tests/Desktop/SecureInputWatch.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class SecretPromptsTest final : public AccessibilityTest {
    Q_OBJECT

private Q_SLOTS:
    void aPromptIsKnownByItsClass_data();
    void aPromptIsKnownByItsClass();
    void aLockerThatAsksNoWindowManagerIsKnown_data();
    void aLockerThatAsksNoWindowManagerIsKnown();
    void aWindowWithoutAClassThatHidesADisplayIsALocker_data();
    void aWindowWithoutAClassThatHidesADisplayIsALocker();
    void aWallpaperBelowWindowsIsNoLocker();
    void aFullScreenWindowInAFrameIsNoLocker();
    void ownWindowsAreNoLockers();
    void whereNobodyCanBeAskedNothingIsWaitedFor_data();
    void whereNobodyCanBeAskedNothingIsWaitedFor();

private:
    static constexpr QRect kWhole = {0, 0, 1920, 1080};

    void begin() { m_input = std::make_unique<AtspiSecureInput>(accessibility()); }
    void letGo() override { m_input.reset(); }

    std::unique_ptr<SecureInput> m_input;
};

void SecretPromptsTest::aPromptIsKnownByItsClass_data()
{
    QTest::addColumn<QString>("windowClass");
    QTest::addColumn<bool>("isPrompt");
    QTest::newRow("pin entry") << u"Pinentry-gtk-2"_s << true;
    QTest::newRow("key prompt") << u"gcr-prompter"_s << true;
    QTest::newRow("agent") << u"polkit-gnome-authentication-agent-1"_s << true;
    QTest::newRow("an ordinary program") << u"Alpha"_s << false;
}

void SecretPromptsTest::aPromptIsKnownByItsClass()
{
    QFETCH(QString, windowClass);
    QFETCH(bool, isPrompt);
    begin();
    WindowProgram program;
    QVERIFY(becomes(*m_input, false));
    QVERIFY(program.open({.frame = {300, 300, 300, 200},
                          .colour = kGreen,
                          .windowClass = windowClass,
                          .title = u"The window"_s}));
    QVERIFY(desktop().bringToFront(u"The window"_s));
    QVERIFY(settles(*m_input, isPrompt));
    WindowProgram other;
    QVERIFY(other.open({.frame = {700, 500, 300, 200},
                        .colour = kRed,
                        .windowClass = u"Beta"_s,
                        .title = u"The other"_s}));
    QVERIFY(desktop().bringToFront(u"The other"_s));
    QVERIFY(becomes(*m_input, false));
}

void SecretPromptsTest::aLockerThatAsksNoWindowManagerIsKnown_data()
{
    QTest::addColumn<bool>("isThereBefore");
    QTest::newRow("there before") << true;
    QTest::newRow("comes") << false;
}

void SecretPromptsTest::aLockerThatAsksNoWindowManagerIsKnown()
{
    QFETCH(bool, isThereBefore);
    WindowProgram program;
    if (!isThereBefore) {
        begin();
        QVERIFY(becomes(*m_input, false));
    }
    const quint32 window = program.open({.frame = {0, 0, 1920, 1080},
                                         .colour = kGreen,
                                         .windowClass = u"i3lock"_s,
                                         .overridesRedirect = true});
    QVERIFY(window);
    if (isThereBefore)
        begin();
    QVERIFY(settles(*m_input, true));
    QVERIFY(program.close(window));
    QVERIFY(becomes(*m_input, false));
}

void SecretPromptsTest::aWindowWithoutAClassThatHidesADisplayIsALocker_data()
{
    QTest::addColumn<WindowSpec>("spec");
    QTest::addColumn<bool>("isLocker");
    const auto add = [](const char* name, const WindowSpec& spec, bool isLocker) {
        QTest::newRow(name) << spec << isLocker;
    };
    add("all of it", {.frame = kWhole, .overridesRedirect = true}, true);
    add("more than that", {.frame = {-1, -1, 3000, 2000}, .overridesRedirect = true}, true);
    add("nearly all", {.frame = {0, 0, 1920, 1079}, .overridesRedirect = true}, false);
    add("with a class", {.frame = kWhole, .windowClass = u"Alpha"_s, .overridesRedirect = true},
        false);
    add("for input alone", {.frame = kWhole, .overridesRedirect = true, .isForInputOnly = true},
        false);
    add("not mapped", {.frame = kWhole, .overridesRedirect = true, .isMapped = false}, false);
}

void SecretPromptsTest::aWindowWithoutAClassThatHidesADisplayIsALocker()
{
    QFETCH(WindowSpec, spec);
    QFETCH(bool, isLocker);
    begin();
    QVERIFY(becomes(*m_input, false));
    WindowProgram program;
    const quint32 window = program.open(spec);
    QVERIFY(window);
    QVERIFY(settles(*m_input, isLocker));
    // A note upon it leaves it what it is.
    WindowProgram other;
    QVERIFY(other.open(
        {.frame = {1500, 40, 350, 90}, .windowClass = u"Beta"_s, .overridesRedirect = true}));
    QVERIFY(settles(*m_input, isLocker));
    QVERIFY(program.close(window));
    QVERIFY(becomes(*m_input, false));
}

void SecretPromptsTest::aWallpaperBelowWindowsIsNoLocker()
{
    WindowProgram wallpaper;
    QVERIFY(wallpaper.open({.frame = kWhole, .overridesRedirect = true}));
    WindowProgram program;
    QVERIFY(program.open(
        {.frame = {100, 100, 900, 700}, .windowClass = u"Alpha"_s, .overridesRedirect = true}));
    begin();
    QVERIFY(settles(*m_input, false));
}

void SecretPromptsTest::aFullScreenWindowInAFrameIsNoLocker()
{
    // As a window manager does it: the frame, one more window of its own, and the program's there.
    WindowProgram manager;
    const quint32 frame = manager.open({.frame = kWhole, .overridesRedirect = true});
    QVERIFY(frame);
    const quint32 inner =
        manager.open({.frame = kWhole, .overridesRedirect = true, .parent = frame});
    QVERIFY(inner);
    WindowProgram program;
    const quint32 film =
        program.open({.frame = kWhole, .overridesRedirect = true, .parent = inner});
    QVERIFY(film);
    begin();
    QVERIFY(settles(*m_input, false));
}

void SecretPromptsTest::ownWindowsAreNoLockers()
{
    PaintedWindows own;
    QVERIFY(own.open({.frame = kWhole, .overridesRedirect = true}));
    begin();
    QVERIFY(settles(*m_input, false));
}

void SecretPromptsTest::whereNobodyCanBeAskedNothingIsWaitedFor_data()
{
    QTest::addColumn<bool>("hasSession");
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("no session bus") << false << QByteArray();
    QTest::newRow("one that is not where it should be")
        << false << QByteArray("unix:path=/nowhere");
    QTest::newRow("an address of no kind") << false << QByteArray("nonsense");
    QTest::newRow("no accessibility bus") << true << QByteArray();
}

/// The first look at the screen is as good as every other, also for prompts.
void SecretPromptsTest::whereNobodyCanBeAskedNothingIsWaitedFor()
{
    QFETCH(bool, hasSession);
    QFETCH(QByteArray, address);
    startDesktop({.hasSession = hasSession, .hasAccessibility = false, .isSwitchedOn = false});
    if (!address.isEmpty())
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    WindowProgram program;
    const quint32 window = program.open({.frame = {300, 300, 300, 200},
                                         .colour = kGreen,
                                         .windowClass = u"Alpha"_s,
                                         .title = u"The window"_s,
                                         .tellsProcess = true});
    QVERIFY(window);
    QVERIFY(desktop().bringToFront(u"The window"_s));
    QVERIFY(QTest::qWaitFor([&] { return X11ActiveWindow().read()->id == window; }, kPatience));
    begin();
    QVERIFY(!m_input->isActive());
    QVERIFY(!m_input->availability().isAvailable);
    QVERIFY(!m_input->availability().reason.isEmpty());
    WindowProgram prompt;
    QVERIFY(prompt.open({.frame = {300, 300, 300, 200},
                         .colour = kGreen,
                         .windowClass = u"gcr-prompter"_s,
                         .title = u"The prompt"_s}));
    QVERIFY(desktop().bringToFront(u"The prompt"_s));
    QVERIFY(settles(*m_input, true));
}

QTEST_GUILESS_MAIN(SecretPromptsTest)
#include "SecretPromptsTest.moc"

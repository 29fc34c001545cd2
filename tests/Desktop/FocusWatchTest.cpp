// SPDX-License-Identifier: Apache-2.0
//
// What is known of the focus when programs, or the X server, are slow.
#include "Mossbank/Platform/Linux/FocusWatch.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "tests/Desktop/AccessibilityTest.h"

#include <QElapsedTimer>
#include <QTest>
#include <qcoro/qcorotask.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

/// A name and a password, and a page so long that a browser is a while about looking through it.
QString longPage(int paragraphs)
{
    return u"<title>Sign in</title><input id=name autofocus><input id=secret type=password>"_s +
           u"<p>Some <b>words</b> of a long page."_s.repeated(paragraphs);
}

} // namespace

class FocusWatchTest final : public AccessibilityTest {
    Q_OBJECT

private Q_SLOTS:
    void aPasswordFieldOfALongPageIsSecret();
    void aLongSearchIsLetComeToItsEnd();
    void whatAWindowBehindTellsIsNotOfTheUser();
    void oneLateAnswerOfTheServerDoesNotHold();
    void aLockerIsNotForgottenWhileTheServerIsSilent();
};

void FocusWatchTest::aPasswordFieldOfALongPageIsSecret()
{
    const auto programs = accessibility();
    QVERIFY2(desktop().startChromium({desktop().page(longPage(35'000))}) != 0,
             qPrintable(desktop().problem()));
    QVERIFY(desktop().bringToFront(u"Sign in - Chromium"_s));
    const auto wait = [&](int limit, auto isEnough) {
        QElapsedTimer timer;
        timer.start();
        while (!timer.hasExpired(limit)) {
            if (isEnough(programs->isSecretTyped()))
                return true;
            QTest::qWait(50);
        }
        return false;
    };
    // It is looked at again and again, as the recorder does.
    wait(6000, [](bool) { return false; });
    QVERIFY(wait(kPatience, [](bool isSecret) { return !isSecret; }));
    QVERIFY(desktop().press({u"Tab"_s}));
    QVERIFY(wait(kPatience, [](bool isSecret) { return isSecret; }));
    QVERIFY2(!wait(6000, [](bool isSecret) { return !isSecret; }),
             "the password field has the focus still");
}

/// Programs come to the bus and leave it all the while.
void FocusWatchTest::aLongSearchIsLetComeToItsEnd()
{
    // A tenth of a second or more.
    constexpr int kParagraphs = 6000;
    QVERIFY2(desktop().startChromium({desktop().page(longPage(kParagraphs))}) != 0,
             qPrintable(desktop().problem()));
    QVERIFY(desktop().bringToFront(u"Sign in - Chromium"_s));
    QTest::qWait(2000);
    QVERIFY(desktop().press({u"Tab"_s}));
    AccessibilityBus bus;
    AccessiblePrograms programs(bus);
    X11ActiveWindow window;
    SecretTyping typing;
    const FocusWatch watch(bus, programs, window, typing);
    bus.start();
    QTimer often;
    connect(&often, &QTimer::timeout, &bus, &AccessibilityBus::programsChanged);
    constexpr int kOften = 50;
    often.start(kOften);
    QVERIFY(QTest::qWaitFor([&] { return typing.place() == SecretTyping::Place::PasswordField; },
                            kPatience));
    often.stop();
}

/// A field in a window behind goes on calling itself focused, and may say so anew.
void FocusWatchTest::whatAWindowBehindTellsIsNotOfTheUser()
{
    const QString password = u"<title>Behind</title><input type=password autofocus>"_s;
    const qint64 process = desktop().startChromium({desktop().page(password)});
    QVERIFY2(process != 0, qPrintable(desktop().problem()));
    QVERIFY(desktop().bringToFront(u"Behind - Chromium"_s));
    AccessibilityBus bus;
    AccessiblePrograms programs(bus);
    X11ActiveWindow window;
    SecretTyping typing;
    FocusWatch watch(bus, programs, window, typing);
    bus.start();
    const auto settles = [&](SecretTyping::Place place) {
        return QTest::qWaitFor(
            [&] {
                watch.check();
                return typing.place() == place;
            },
            kPatience);
    };
    QVERIFY(settles(SecretTyping::Place::PasswordField));
    const auto fields = [&]() -> Asked<QList<Accessible>> {
        const auto roots = co_await programs.rootsOf(process);
        const auto windows = co_await askWindows(bus, roots.value().value(0));
        for (const AccessibleWindow& one : windows.value()) {
            if (one.name == u"Behind - Chromium")
                co_return co_await askMatches(bus, one.object, AccessibleState::Focused);
        }
        co_return std::nullopt;
    };
    const QList<Accessible> found = QCoro::waitFor(fields()).value_or(QList<Accessible>());
    QCOMPARE(found.size(), 1);

    QVERIFY(desktop().startChromium(
        {u"--new-window"_s, u"data:text/html,<title>Front</title><textarea autofocus>"_s}));
    QVERIFY(desktop().bringToFront(u"Front - Chromium"_s));
    QVERIFY(settles(SecretTyping::Place::Ordinary));
    QTest::qWait(2000);
    Q_EMIT bus.focusChanged(found[0].service, found[0].path, true);
    bool isSecret = false;
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(1500)) {
        isSecret |= typing.place() == SecretTyping::Place::PasswordField;
        QTest::qWait(5);
    }
    QVERIFY2(!isSecret, "it is not in the window in front");
}

void FocusWatchTest::oneLateAnswerOfTheServerDoesNotHold()
{
    AccessibilityBus bus;
    AccessiblePrograms programs(bus);
    X11ActiveWindow window;
    SecretTyping typing;
    FocusWatch watch(bus, programs, window, typing);
    QVERIFY(window.read());
    QVERIFY(typing.place() != SecretTyping::Place::Unknown);
    const auto server = static_cast<pid_t>(desktop().serverProcess());
    ::kill(server, SIGSTOP);
    Q_EMIT window.changed();
    const auto place = typing.place();
    ::kill(server, SIGCONT);
    QCOMPARE(place, SecretTyping::Place::Unknown);
    QVERIFY(window.read());
    QCOMPARE(typing.place(), SecretTyping::Place::Unknown);
    watch.check();
    QVERIFY(typing.place() != SecretTyping::Place::Unknown);
}

void FocusWatchTest::aLockerIsNotForgottenWhileTheServerIsSilent()
{
    AccessibilityBus bus;
    AccessiblePrograms programs(bus);
    X11ActiveWindow window;
    SecretTyping typing;
    FocusWatch watch(bus, programs, window, typing);
    WindowProgram program;
    const quint32 locker = program.open({.frame = {0, 0, 1920, 1080},
                                         .colour = kGreen,
                                         .windowClass = u"i3lock"_s,
                                         .overridesRedirect = true});
    QVERIFY(locker);
    // Longer than anything counts as secret only because it is being found out.
    QTest::qWait(2000);
    QVERIFY(typing.isSecret());
    const auto server = static_cast<pid_t>(desktop().serverProcess());
    ::kill(server, SIGSTOP);
    Q_EMIT window.overlaysChanged();
    const bool isSecret = typing.isSecret();
    ::kill(server, SIGCONT);
    QVERIFY(isSecret);
    QVERIFY(program.close(locker));
    QVERIFY(QTest::qWaitFor([&] { return !typing.isSecret(); }, kPatience));
}

QTEST_GUILESS_MAIN(FocusWatchTest)
#include "FocusWatchTest.moc"

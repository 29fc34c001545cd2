// SPDX-License-Identifier: Apache-2.0
//
// Password fields of real programs.
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "tests/Desktop/AccessibilityTest.h"
#include "tests/Desktop/SecureInputWatch.h"
#include "tests/Desktop/SignIn.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

/// After a window has come up, until it takes keys.
constexpr int kUntilReady = 500;

} // namespace

class SecureInputTest final : public AccessibilityTest {
    Q_OBJECT

private Q_SLOTS:
    void aPasswordFieldIsSecretWhileItHasTheFocus_data() { addSignInKinds(); }
    void aPasswordFieldIsSecretWhileItHasTheFocus();
    void aPasswordFieldThatHadTheFocusBeforeIsFound_data() { addSignInKinds(); }
    void aPasswordFieldThatHadTheFocusBeforeIsFound();
    void aFieldThatBecomesOneForPasswordsIsNoticed_data();
    void aFieldThatBecomesOneForPasswordsIsNoticed();
    void aFieldThatGoesIsNoLongerSecret();
    void anotherWindowOfTheSameProgramIsNotSecret();
    void aPasswordFieldOfAProgramThatStoppedStaysSecret();
    void aProgramThatStoppedIsNotWaitedForLong();
    void theBusMayGoAndComeBack();
    void aPasswordFieldStaysSecretWhenTheBusGoes();
    void withoutItsBusItSaysWhy_data();
    void withoutItsBusItSaysWhy();

private:
    void begin() { m_input = std::make_unique<AtspiSecureInput>(accessibility()); }
    bool open(const QString& kind);
    qint64 longestAnswer(int milliseconds);
    void letGo() override { m_input.reset(); }

    std::unique_ptr<SecureInput> m_input;
    qint64 m_process = 0;
};

bool SecureInputTest::open(const QString& kind)
{
    m_process = openSignIn(desktop(), kind);
    return m_process != 0;
}

/// In microseconds, of many answers in so long a time. One of a hundred does not count: on a busy
/// machine this program itself has to wait for its turn.
qint64 SecureInputTest::longestAnswer(int milliseconds)
{
    QElapsedTimer all;
    all.start();
    std::vector<qint64> times;
    while (!all.hasExpired(milliseconds)) {
        QElapsedTimer one;
        one.start();
        m_input->isActive();
        times.push_back(one.nsecsElapsed() / 1000);
        QTest::qWait(1);
    }
    std::ranges::sort(times);
    const qint64 longest = times.at((times.size() - 1) * 99 / 100);
    qInfo("the longest answer took %lld microseconds", static_cast<long long>(longest));
    return longest;
}

void SecureInputTest::aPasswordFieldIsSecretWhileItHasTheFocus()
{
    QFETCH(QString, kind);
    begin();
    QVERIFY2(open(kind), qPrintable(desktop().problem()));
    QVERIFY(becomes(*m_input, false));
    QTest::qWait(kUntilReady);
    QVERIFY(desktop().press({u"Tab"_s}));
    QVERIFY(settles(*m_input, true));
    QVERIFY(desktop().press({u"shift+Tab"_s}));
    QVERIFY(becomes(*m_input, false));
    QVERIFY(desktop().press({u"Tab"_s}));
    QVERIFY(becomes(*m_input, true));

    // Another window in front, and this one again.
    WindowProgram other;
    QVERIFY(other.open({.frame = {600, 500, 300, 200},
                        .colour = kGreen,
                        .windowClass = u"Alpha"_s,
                        .title = u"The other"_s}));
    QVERIFY(desktop().bringToFront(u"The other"_s));
    QVERIFY(settles(*m_input, false));
    QVERIFY(desktop().bringToFront(titleOfSignIn(kind)));
    QVERIFY(settles(*m_input, true));
}

void SecureInputTest::aPasswordFieldThatHadTheFocusBeforeIsFound()
{
    QFETCH(QString, kind);
    QVERIFY2(open(kind), qPrintable(desktop().problem()));
    QTest::qWait(kUntilReady);
    QVERIFY(desktop().press({u"Tab"_s}));
    QTest::qWait(500);
    begin();
    QVERIFY(settles(*m_input, true));
    QVERIFY(desktop().press({u"shift+Tab"_s}));
    QVERIFY(becomes(*m_input, false));
}

void SecureInputTest::aFieldThatBecomesOneForPasswordsIsNoticed_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("Chromium") << u"Chromium"_s;
    QTest::newRow("Qt, which says nothing of it") << u"Qt"_s;
}

void SecureInputTest::aFieldThatBecomesOneForPasswordsIsNoticed()
{
    QFETCH(QString, kind);
    begin();
    if (kind == u"Qt") {
        QVERIFY(open(kind));
    } else {
        const QString content =
            u"<title>Opening</title><input autofocus onfocus=\"document.title = 'Sign in'\" "
            u"onkeydown=\"if (event.key == 'F8') "
            u"this.type = this.type == 'text' ? 'password' : 'text'\" type=text>"_s;
        QVERIFY(desktop().startChromium({desktop().page(content)}));
        QVERIFY(desktop().bringToFront(u"Sign in - Chromium"_s));
    }
    QTest::qWait(kUntilReady);
    QVERIFY(becomes(*m_input, false));
    QVERIFY(desktop().press({u"F8"_s}));
    QVERIFY(becomes(*m_input, true));
    QVERIFY(desktop().press({u"F8"_s}));
    QVERIFY(becomes(*m_input, false));
}

void SecureInputTest::aFieldThatGoesIsNoLongerSecret()
{
    begin();
    const QString content = u"<title>Opening</title><input id=i autofocus type=password "
                            u"onfocus=\"document.title = 'Sign in'\" onkeydown=\"if (event.key == "
                            u"'F8') document.body.replaceChildren('welcome')\">"_s;
    QVERIFY(desktop().startChromium({desktop().page(content)}));
    QVERIFY(desktop().bringToFront(u"Sign in - Chromium"_s));
    QVERIFY(settles(*m_input, true));
    QVERIFY(desktop().press({u"F8"_s}));
    QVERIFY(becomes(*m_input, false));
}

void SecureInputTest::anotherWindowOfTheSameProgramIsNotSecret()
{
    begin();
    const QString secret = desktop().page(u"<title>Opening</title><input autofocus type=password "
                                          u"onfocus=\"document.title = 'Sign in'\">"_s);
    QVERIFY(desktop().startChromium({secret}));
    QVERIFY(desktop().bringToFront(u"Sign in - Chromium"_s));
    QVERIFY(settles(*m_input, true));
    const QString plain =
        u"data:text/html,<title>Notes</title><textarea autofocus>Heron</textarea>"_s;
    QVERIFY(desktop().startChromium({u"--new-window"_s, plain}));
    QVERIFY(desktop().bringToFront(u"Notes - Chromium"_s));
    QVERIFY(settles(*m_input, false));
    QVERIFY(desktop().bringToFront(u"Sign in - Chromium"_s));
    QVERIFY(settles(*m_input, true));
}

void SecureInputTest::aPasswordFieldOfAProgramThatStoppedStaysSecret()
{
    begin();
    QVERIFY2(open(u"GTK"_s), qPrintable(desktop().problem()));
    QTest::qWait(500);
    QVERIFY(desktop().press({u"Tab"_s}));
    // While it is being asked it counts as secret as well, and might be stopped before it answers.
    QVERIFY(settles(*m_input, true));
    ::kill(static_cast<pid_t>(m_process), SIGSTOP);
    const qint64 longest = longestAnswer(4000);
    QVERIFY(m_input->isActive());
    ::kill(static_cast<pid_t>(m_process), SIGCONT);
    QVERIFY(desktop().press({u"shift+Tab"_s}));
    QVERIFY(becomes(*m_input, false));
    QVERIFY2(longest < 5000, qPrintable(QString::number(longest)));
}

void SecureInputTest::aProgramThatStoppedIsNotWaitedForLong()
{
    QVERIFY2(open(u"Chromium"_s), qPrintable(desktop().problem()));
    QTest::qWait(kUntilReady);
    ::kill(static_cast<pid_t>(m_process), SIGSTOP);
    begin();
    QVERIFY(m_input->isActive());
    const qint64 longest = longestAnswer(2000);
    QVERIFY(becomes(*m_input, false));
    ::kill(static_cast<pid_t>(m_process), SIGCONT);
    QVERIFY(desktop().press({u"Tab"_s}));
    QVERIFY(becomes(*m_input, true));
    QVERIFY2(longest < 5000, qPrintable(QString::number(longest)));
}

void SecureInputTest::theBusMayGoAndComeBack()
{
    begin();
    QVERIFY(m_input->availability().isAvailable);
    QVERIFY(desktop().killAccessibilityBus());
    // Programs do not come back to a new bus; those that are started then go to it.
    QVERIFY(QTest::qWaitFor([&] { return !m_input->availability().isAvailable; }, kPatience));
    QVERIFY(QTest::qWaitFor(
        [&] {
            desktop().switchTelling(true);
            return m_input->availability().isAvailable;
        },
        kPatience));
    QVERIFY2(open(u"GTK"_s), qPrintable(desktop().problem()));
    QTest::qWait(500);
    QVERIFY(desktop().press({u"Tab"_s}));
    QVERIFY(settles(*m_input, true));
    QVERIFY(desktop().press({u"shift+Tab"_s}));
    QVERIFY(becomes(*m_input, false));
}

void SecureInputTest::aPasswordFieldStaysSecretWhenTheBusGoes()
{
    begin();
    QVERIFY2(open(u"GTK"_s), qPrintable(desktop().problem()));
    QTest::qWait(kUntilReady);
    QVERIFY(desktop().press({u"Tab"_s}));
    QVERIFY(becomes(*m_input, true));
    QVERIFY(desktop().killAccessibilityBus());
    QVERIFY(QTest::qWaitFor([&] { return !m_input->availability().isAvailable; }, kPatience));
    QVERIFY2(m_input->isActive(), "it is on the screen still");
    WindowProgram other;
    QVERIFY(other.open({.frame = {600, 500, 300, 200},
                        .colour = kGreen,
                        .windowClass = u"Alpha"_s,
                        .title = u"The other"_s}));
    QVERIFY(desktop().bringToFront(u"The other"_s));
    QVERIFY(becomes(*m_input, false));
}

void SecureInputTest::withoutItsBusItSaysWhy_data()
{
    QTest::addColumn<bool>("hasSession");
    QTest::addColumn<bool>("hasAccessibility");
    QTest::addColumn<QString>("word");
    QTest::newRow("no session bus") << false << true << u"There is no session bus"_s;
    QTest::newRow("no accessibility bus") << true << false << u"at-spi2-core"_s;
    QTest::newRow("switched off") << true << true << u"switched off"_s;
}

void SecureInputTest::withoutItsBusItSaysWhy()
{
    QFETCH(bool, hasSession);
    QFETCH(bool, hasAccessibility);
    QFETCH(QString, word);
    startDesktop(
        {.hasSession = hasSession, .hasAccessibility = hasAccessibility, .isSwitchedOn = false});
    begin();
    QVERIFY(!m_input->availability().isAvailable);
    QVERIFY2(m_input->availability().reason.contains(word),
             qPrintable(m_input->availability().reason));
    // The classes of windows are known all the same.
    WindowProgram program;
    QVERIFY(becomes(*m_input, false));
    QVERIFY(program.open({.frame = {300, 300, 300, 200},
                          .colour = kGreen,
                          .windowClass = u"Pinentry-gtk-2"_s,
                          .title = u"The window"_s}));
    QVERIFY(desktop().bringToFront(u"The window"_s));
    QVERIFY(becomes(*m_input, true));
}

QTEST_GUILESS_MAIN(SecureInputTest)
#include "SecureInputTest.moc"

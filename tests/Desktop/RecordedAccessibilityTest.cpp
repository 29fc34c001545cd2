// SPDX-License-Identifier: Apache-2.0
//
// The real program where what programs tell assistive tools is switched off or goes away, and
// before windows that are secret by their class.
#include "tests/Desktop/AccessibilityTest.h"
#include "tests/Desktop/PageServer.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/SignIn.h"

#include <QTest>

#include <algorithm>
#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kSkipped = u"Skipped while a password field or other secure input is active"_s;
const QString kTypingUnnoticed = u"So Mossbank may not notice that a password is typed"_s;
const QString kSwitchingOn = u"Accessibility is being switched on for this session"_s;
const QString kSwitchedOff = u"Accessibility is switched off in this session."_s;

/// It looks for what is missing every ten seconds.
constexpr int kUntilNextLook = 11'000;
constexpr int kSeveralPasses = 2500;
/// After a window has come up, until it takes keys.
constexpr int kUntilReady = 1000;

} // namespace

class RecordedAccessibilityTest final : public AccessibilityTest {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useTestApplications(); }
    void aPromptAndALockerAreNotRecorded();
    void itRecordsWithoutItsBusAndSkipsAgainWithANewOne();
    void whoWantsAddressesHasItSwitchedOn();
    void whoHasNotSaidSoHasItLeftOff();

private:
    bool startRecording(RunningMossbank& mossbank, QMap<QString, QString> choices = {})
    {
        mossbank.setSessionBus(AccessibleDesktop::sessionBus());
        choices.insert(u"interval"_s, u"1"_s);
        choices.insert(u"skipsUnchangedScreens"_s, u"false"_s);
        mossbank.choose(choices);
        return mossbank.start() && mossbank.waitFor(u"Saved at "_s);
    }

    static bool goesOn(RunningMossbank& mossbank)
    {
        const auto rows = mossbank.rows().size();
        const auto pictures = mossbank.pictureFiles().size();
        return QTest::qWaitFor(
            [&] {
                return mossbank.rows().size() > rows + 1 &&
                       mossbank.pictureFiles().size() > pictures + 1;
            },
            kPatience);
    }

    /// Fails the case unless it skips for the so-manieth time, and saves nothing for a while.
    static void isSkipped(RunningMossbank& mossbank, int time)
    {
        QVERIFY2(mossbank.waitFor(kSkipped, time), qPrintable(mossbank.terminal()));
        const auto rows = mossbank.rows().size();
        const auto pictures = mossbank.pictureFiles().size();
        QTest::qWait(kSeveralPasses);
        QCOMPARE(mossbank.rows().size(), rows);
        QCOMPARE(mossbank.pictureFiles().size(), pictures);
    }

    bool openEditor(WindowProgram& editor)
    {
        return editor.open({.frame = {700, 500, 300, 200},
                            .colour = kGreen,
                            .windowClass = u"Alpha"_s,
                            .title = u"The editor"_s}) != 0 &&
               desktop().bringToFront(u"The editor"_s);
    }
};

void RecordedAccessibilityTest::aPromptAndALockerAreNotRecorded()
{
    WindowProgram editor;
    QVERIFY(openEditor(editor));
    RunningMossbank mossbank;
    QVERIFY2(startRecording(mossbank), qPrintable(mossbank.terminal()));

    WindowProgram secret;
    const quint32 prompt = secret.open({.frame = {300, 300, 300, 200},
                                        .colour = kRed,
                                        .windowClass = u"Pinentry-gtk-2"_s,
                                        .title = u"The prompt"_s});
    QVERIFY(prompt != 0 && desktop().bringToFront(u"The prompt"_s));
    isSkipped(mossbank, 1);
    QVERIFY(secret.close(prompt));
    QVERIFY(desktop().bringToFront(u"The editor"_s));
    QVERIFY2(goesOn(mossbank), qPrintable(mossbank.terminal()));

    const quint32 locker = secret.open({.frame = {0, 0, 1920, 1080},
                                        .colour = kRed,
                                        .windowClass = u"i3lock"_s,
                                        .overridesRedirect = true});
    QVERIFY(locker != 0);
    isSkipped(mossbank, 2);
    QVERIFY(secret.close(locker));
    QVERIFY2(goesOn(mossbank), qPrintable(mossbank.terminal()));
    QCOMPARE(mossbank.stop(SIGINT), 0);
    const QList<Memory> rows = mossbank.rows();
    QVERIFY(std::ranges::all_of(
        rows, [](const Memory& row) { return row.bundleID == u"org.example.Alpha"; }));
}

void RecordedAccessibilityTest::itRecordsWithoutItsBusAndSkipsAgainWithANewOne()
{
    WindowProgram editor;
    QVERIFY(openEditor(editor));
    RunningMossbank mossbank;
    QVERIFY2(startRecording(mossbank), qPrintable(mossbank.terminal()));
    QVERIFY2(!mossbank.terminal().contains(kTypingUnnoticed), qPrintable(mossbank.terminal()));

    QVERIFY(desktop().killAccessibilityBus());
    QVERIFY2(goesOn(mossbank), qPrintable(mossbank.terminal()));
    QVERIFY2(mossbank.waitFor(kTypingUnnoticed), qPrintable(mossbank.terminal()));
    QTest::qWait(kUntilNextLook);
    QVERIFY2(goesOn(mossbank), qPrintable(mossbank.terminal()));

    // Programs do not come back to a new bus; those that are started then go to it.
    QVERIFY(QTest::qWaitFor([&] { return desktop().switchTelling(true) && desktop().isTelling(); },
                            kPatience));
    QVERIFY2(openSignIn(desktop(), u"GTK"_s), qPrintable(desktop().problem()));
    QTest::qWait(kUntilReady);
    QVERIFY(desktop().press({u"Tab"_s}));
    isSkipped(mossbank, 1);
    QVERIFY(desktop().press({u"shift+Tab"_s}));
    QVERIFY2(goesOn(mossbank), qPrintable(mossbank.terminal()));
    QCOMPARE(mossbank.stop(SIGINT), 0);
    // A new bus may be met before it is switched on there, which is another reason.
    const QStringList lines = mossbank.terminal().split(u'\n');
    for (const QString& line : lines) {
        if (line.contains(u"ccessibility"_s) || line.contains(kTypingUnnoticed))
            QVERIFY2(lines.count(line) == 1, qPrintable(mossbank.terminal()));
    }
}

void RecordedAccessibilityTest::whoWantsAddressesHasItSwitchedOn()
{
    startDesktop({.isSwitchedOn = false});
    QVERIFY(!desktop().isTelling());
    const PageServer server;
    QVERIFY(server.isListening());
    const QString address = server.address(u"Heron/one"_s);
    QVERIFY(desktop().startFirefox({address}));
    QVERIFY(desktop().bringToFront(u"Heron — Mozilla Firefox"_s));
    RunningMossbank mossbank;
    QVERIFY2(startRecording(mossbank, {{u"savesAddresses"_s, u"true"_s}}),
             qPrintable(mossbank.terminal()));
    QVERIFY2(mossbank.waitFor(kSwitchingOn), qPrintable(mossbank.terminal()));
    QVERIFY(QTest::qWaitFor([&] { return desktop().isTelling(); }, kPatience));
    QVERIFY2(QTest::qWaitFor(
                 [&] {
                     const QList<Memory> rows = mossbank.rows();
                     return std::ranges::any_of(
                         rows, [&](const Memory& row) { return row.link == address; });
                 },
                 kPatience),
             qPrintable(mossbank.terminal()));
    QCOMPARE(mossbank.stop(SIGINT), 0);
    QCOMPARE(mossbank.terminal().count(kSwitchingOn), 1);
    QVERIFY2(!mossbank.terminal().contains(kSwitchedOff), qPrintable(mossbank.terminal()));
}

void RecordedAccessibilityTest::whoHasNotSaidSoHasItLeftOff()
{
    startDesktop({.isSwitchedOn = false});
    WindowProgram editor;
    QVERIFY(openEditor(editor));
    RunningMossbank mossbank;
    QVERIFY2(startRecording(mossbank), qPrintable(mossbank.terminal()));
    const QStringList sentences = {kSwitchedOff + u' ' + kTypingUnnoticed,
                                   kSwitchedOff +
                                       u" So browsers do not tell the address of a page"_s};
    for (const QString& sentence : sentences)
        QVERIFY2(mossbank.waitFor(sentence), qPrintable(mossbank.terminal()));
    QTest::qWait(kUntilNextLook);
    QVERIFY(!desktop().isTelling());
    QCOMPARE(mossbank.stop(SIGINT), 0);
    QCOMPARE(mossbank.terminal().count(kSwitchedOff), sentences.size());
    QVERIFY2(!mossbank.terminal().contains(kSwitchingOn), qPrintable(mossbank.terminal()));
}

QTEST_GUILESS_MAIN(RecordedAccessibilityTest)
#include "RecordedAccessibilityTest.moc"

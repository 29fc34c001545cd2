// SPDX-License-Identifier: Apache-2.0
//
// The real program and its icon in a tray of the older kind, which takes in a window of it: found
// and pressed by the mouse, as the user does.
#include "tests/Desktop/CalledMossbank.h"
#include "tests/Desktop/NotifierPanel.h"

#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 20'000;

const QString kTrayer = u"trayer"_s;
const QString kXdotool = u"xdotool"_s;
const QString kRecords = u"Waiting for your next screen"_s;
const QString kWindow = u"Mossbank"_s;
const QString kQuestion = u"Mossbank is recording"_s;

} // namespace

class EmbeddedTrayTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<CalledMossbank> m_called;
    QProcess* m_tray = nullptr;

    RunningMossbank& mossbank() { return m_called->mossbank(); }

    bool start() { return m_called->start(kRecords) && m_called->waitUntilFound(); }

    void startTray()
    {
        m_tray = &m_called->bus().start(kTrayer, {u"--edge"_s, u"bottom"_s, u"--widthtype"_s,
                                                  u"request"_s, u"--height"_s, u"24"_s});
    }
    void endTray()
    {
        TestBus::end(*m_tray);
        m_tray = nullptr;
    }

    QString tool(const QStringList& arguments)
    {
        const auto outcome = m_called->desktop().run(kXdotool, arguments, kXdotool);
        return outcome.isSuccess ? outcome.text.trimmed() : QString();
    }

    QStringList windows()
    {
        return tool({u"search"_s, u"--onlyvisible"_s, u"--class"_s, u"mossbank"_s})
            .split(u'\n', Qt::SkipEmptyParts);
    }
    bool waitForWindows(int count)
    {
        return QTest::qWaitFor([&] { return windows().size() == count; }, kPatience);
    }

    /// Presses a button of the mouse on the icon.
    bool clickOn(const QString& icon, int button)
    {
        return m_called->desktop()
            .run(kXdotool,
                 {u"mousemove"_s, u"--window"_s, icon, u"8"_s, u"8"_s, u"click"_s,
                  QString::number(button)},
                 kXdotool)
            .isSuccess;
    }
    /// A tray that has just taken in the icon may still move it.
    bool openMenu()
    {
        constexpr int kMilliseconds = 500;
        const auto isOpen = [this] {
            const QStringList before = windows();
            if (before.size() == 1 && clickOn(before.first(), 3))
                QTest::qWait(kMilliseconds);
            return windows().size() == 2;
        };
        return QTest::qWaitFor(isOpen, kPatience);
    }

private Q_SLOTS:
    void init()
    {
        m_called = std::make_unique<CalledMossbank>();
        QVERIFY2(m_called->problem().isEmpty(), qPrintable(m_called->problem()));
        const QString missing = whyMissing(kTrayer, kTrayer);
        QVERIFY2(missing.isEmpty(), qPrintable(missing));
    }
    void cleanup() { m_called.reset(); }

    void whatIsChosenInTheMenuIsDone()
    {
        startTray();
        QVERIFY(start());
        QVERIFY(openMenu());
        // From below: quit, open, exclude. The terminal is in front as before.
        QVERIFY(m_called->press(u"Up"_s));
        QVERIFY(m_called->press(u"Up"_s));
        QVERIFY(m_called->press(u"Up"_s));
        QVERIFY(m_called->press(u"Return"_s));
        QVERIFY2(mossbank().waitFor(u"Excluded XTerm"_s), qPrintable(mossbank().terminal()));
        QVERIFY(waitForWindows(1));

        QVERIFY(openMenu());
        QVERIFY(m_called->press(u"Up"_s));
        QVERIFY(m_called->press(u"Return"_s));
        const quint32 question = m_called->window(kQuestion);
        QVERIFY(question != 0 && m_called->waitUntilActive(question));
        QVERIFY(m_called->press(u"ctrl+q"_s));
        QCOMPARE(mossbank().waitForEnd(), 0);
    }

    void aClickOpensTheWindow()
    {
        startTray();
        QVERIFY(start());
        QVERIFY(waitForWindows(1));
        // A start out of sight keeps the window closed for a moment.
        QVERIFY(m_called->waitForAnotherPicture());
        const QString icon = windows().first();
        const auto isOpen = [&] {
            return clickOn(icon, 1) && QTest::qWaitFor([this] { return windows().size() == 2; });
        };
        QVERIFY(QTest::qWaitFor(isOpen, kPatience));
        const quint32 window = m_called->window(kWindow);
        QVERIFY(window != 0 && m_called->waitUntilActive(window));
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void theIconIsNoWindowThatIsOpen()
    {
        startTray();
        QVERIFY(start());
        QVERIFY(waitForWindows(1));
        // A start out of sight keeps the window closed for a moment.
        QVERIFY(m_called->waitForAnotherPicture());
        // Started once more it shows itself, and the icon is not what it shows.
        QCOMPARE(mossbank().startAgain().status, 0);
        const quint32 window = m_called->window(kWindow);
        QVERIFY(window != 0 && m_called->waitUntilActive(window));
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void aTrayThatComesLaterHasTheIcon()
    {
        constexpr int kMilliseconds = 3000;
        QVERIFY(start());
        QTest::qWait(kMilliseconds);
        QCOMPARE(windows(), QStringList());
        startTray();
        QVERIFY(openMenu());
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void aTrayThatComesBackHasItAgain()
    {
        startTray();
        QVERIFY(start());
        QVERIFY(waitForWindows(1));
        endTray();
        QVERIFY2(waitForWindows(0), "nothing of the icon is left on the screen");
        QVERIFY(m_called->waitForAnotherPicture());
        startTray();
        QVERIFY(openMenu());
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void withBothTheNewerOneHasIt()
    {
        const NotifierPanel panel;
        startTray();
        QVERIFY(start());
        QTRY_COMPARE_WITH_TIMEOUT(panel.icons().size(), 1, kPatience);
        QVERIFY(m_called->waitForAnotherPicture());
        QCOMPARE(windows(), QStringList());
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }
};

QTEST_GUILESS_MAIN(EmbeddedTrayTest)
#include "EmbeddedTrayTest.moc"

// SPDX-License-Identifier: Apache-2.0
//
// The real program and its icon in a panel that speaks the protocol of status notifiers: what the
// icon and its menu show, and what becomes of what is chosen there.
#include "tests/Desktop/CalledMossbank.h"
#include "tests/Desktop/NotifierPanel.h"

#include <QDir>
#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 20'000;

const QString kRecords = u"Waiting for your next screen"_s;
const QString kRests = u"Recording is off"_s;
const QString kPauses = u"Paused until "_s;
const QString kWindow = u"Mossbank"_s;
const QString kNotice = u"Mossbank keeps recording"_s;
const QString kQuestion = u"Mossbank is recording"_s;

/// The choices of somebody who starts recording by hand.
const QMap<QString, QString> kByHand = {{u"recordsAtLaunch"_s, u"false"_s}};

const QStringList kEnd = {u"Exclude the App in Front"_s, u"Open Mossbank"_s, u"-"_s,
                          u"Quit Mossbank"_s};
/// All of them without the lines above, which say what it did last.
const QStringList kOff = QStringList{u"Start Recording"_s, u"[Capture Now]"_s} + kEnd;
const QStringList kOn = QStringList{u"Pause Recording"_s, u"Pause For"_s, u"Capture Now"_s} + kEnd;
const QStringList kPaused =
    QStringList{u"Resume Recording"_s, u"Cancel Timed Pause"_s, u"[Capture Now]"_s} + kEnd;

} // namespace

class TrayTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<CalledMossbank> m_called;
    std::unique_ptr<NotifierPanel> m_panel;
    std::unique_ptr<NotifierIcon> m_icon;
    /// The entries that were told to have changed.
    QStringList m_changes;

    RunningMossbank& mossbank() { return m_called->mossbank(); }

    bool start(const QString& line) { return m_called->start(line) && m_called->waitUntilFound(); }

    /// Its icon is in the panel, and only that.
    bool waitForIcon()
    {
        const bool isThere =
            QTest::qWaitFor([this] { return m_panel->icons().size() == 1; }, kPatience);
        m_icon = isThere ? std::make_unique<NotifierIcon>(m_panel->icons().first()) : nullptr;
        return isThere;
    }

    bool waitUntilShown(const QStringList& expected)
    {
        const auto isLine = [](const QString& title) {
            return title.startsWith(u'[') && title != u"[Capture Now]" &&
                   title != u"[Start Recording]";
        };
        return QTest::qWaitFor(
            [&] {
                QStringList shown = m_icon->shown();
                shown.removeIf(isLine);
                return shown == expected;
            },
            kPatience);
    }

private Q_SLOTS:
    void init()
    {
        m_called = std::make_unique<CalledMossbank>();
        QVERIFY2(m_called->problem().isEmpty(), qPrintable(m_called->problem()));
        m_panel = std::make_unique<NotifierPanel>();
        QVERIFY2(m_panel->problem().isEmpty(), qPrintable(m_panel->problem()));
        m_changes.clear();
    }
    void cleanup()
    {
        m_icon.reset();
        m_panel.reset();
        m_called.reset();
    }

    void theIconShowsTheState()
    {
        m_called->choose(kByHand);
        QVERIFY(start(kRests));
        QVERIFY(waitForIcon());
        QVERIFY2(m_icon->widths().contains(22), "the size of most panels");
        QCOMPARE(m_icon->redness(), 0);
        QCOMPARE(m_icon->toolTip(), u"Mossbank\n"_s + kRests);
        QVERIFY(m_icon->choose(u"Start Recording"_s));
        QTRY_VERIFY_WITH_TIMEOUT(m_icon->redness() >= 5, kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(m_icon->toolTip() != u"Mossbank\n"_s + kRests, kPatience);
        QVERIFY(m_icon->choose(u"Pause Recording"_s));
        QTRY_COMPARE_WITH_TIMEOUT(m_icon->redness(), 0, kPatience);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void theMenuStartsPausesAndResumes()
    {
        m_called->choose(kByHand);
        QVERIFY(start(kRests));
        QVERIFY(waitForIcon());
        QVERIFY(waitUntilShown(kOff));
        QCOMPARE(m_icon->shown().first(), u"[Recording is off]"_s);
        QVERIFY2(m_icon->shown().at(1).startsWith(u"[Screenshots will be saved unencrypted: "_s),
                 "there is no keyring here");

        QVERIFY(m_icon->choose(u"Start Recording"_s));
        QVERIFY(mossbank().waitFor(kRecords));
        QVERIFY(waitUntilShown(kOn));
        QCOMPARE(m_icon->menu().find(u"Pause For"_s)->shown(),
                 (QStringList{u"15 minutes"_s, u"1 hour"_s, u"until morning"_s}));
        QVERIFY(m_called->waitForAnotherPicture());

        QVERIFY(m_icon->choose(u"15 minutes"_s));
        QVERIFY(mossbank().waitFor(kPauses));
        QVERIFY(waitUntilShown(kPaused));
        QVERIFY(m_icon->shown().first().startsWith(u'[' + kPauses));
        QVERIFY(!mossbank().choice(u"pausedUntil"_s).isNull());

        QVERIFY(m_icon->choose(u"Resume Recording"_s));
        QVERIFY(mossbank().waitFor(kRecords, 2));
        QVERIFY(waitUntilShown(kOn));
        QVERIFY(mossbank().choice(u"pausedUntil"_s).isNull());

        QVERIFY(m_icon->choose(u"until morning"_s));
        QVERIFY(waitUntilShown(kPaused));
        QVERIFY(m_icon->choose(u"Cancel Timed Pause"_s));
        QVERIFY(waitUntilShown(kOff));
        QVERIFY(mossbank().choice(u"pausedUntil"_s).isNull());
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void theMenuCapturesNow()
    {
        constexpr int kMilliseconds = 1000;
        // Nothing but the menu has it look again.
        mossbank().choose({{u"interval"_s, u"3600"_s},
                           {u"capturesOnAppSwitch"_s, u"false"_s},
                           {u"skipsUnchangedScreens"_s, u"false"_s}});
        QVERIFY(start(kRecords));
        QVERIFY(waitForIcon());
        // The look at the start may find nothing yet, and on a busy machine it may still be under
        // way. The second time it cannot be that.
        for (int time = 0; time < 2; ++time) {
            QTest::qWait(kMilliseconds);
            const qsizetype before = mossbank().pictureFiles().size();
            // One under way holds another off.
            const auto capture = [&] {
                m_icon->choose(u"Capture Now"_s);
                QTest::qWait(kMilliseconds);
                return mossbank().pictureFiles().size() > before;
            };
            QVERIFY2(QTest::qWaitFor(capture, kPatience), qPrintable(mossbank().terminal()));
        }
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void theMenuExcludesWhatIsInFront()
    {
        QVERIFY(start(kRecords));
        QVERIFY(waitForIcon());
        QVERIFY(m_called->waitForAnotherPicture());
        QVERIFY(m_icon->choose(u"Exclude the App in Front"_s));
        QVERIFY(mossbank().waitFor(u"Excluded XTerm"_s));
        QVERIFY2(mossbank().choice(u"excludedBundles"_s).contains(u"xterm"_s, Qt::CaseInsensitive),
                 qPrintable(mossbank().choice(u"excludedBundles"_s)));
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void noSignInALineIsTakenForAKey()
    {
        // What the program cannot read its choices from is named in a line.
        const QString folder = mossbank().home() + u"/R&D_heron_&_reed"_s;
        QVERIFY(QDir().mkpath(folder + u"/Mossbank/Mossbank.ini"_s));
        mossbank().setVariable(u"XDG_CONFIG_HOME"_s, folder);
        QVERIFY(start(kRests));
        QVERIFY(waitForIcon());
        const QString lines = m_icon->shown().join(u' ').remove(u"] ["_s);
        QVERIFY2(lines.contains(u"/R&D_heron_&_reed/Mossbank/Mossbank.ini"_s), qPrintable(lines));
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void theIconAndItsMenuOpenTheWindow()
    {
        QVERIFY(start(kRecords));
        QVERIFY(waitForIcon());
        // A start out of sight keeps the window closed for a moment.
        QVERIFY(m_called->waitForAnotherPicture());
        QCOMPARE(m_called->windows(), 0);
        QVERIFY(m_icon->activate());
        const quint32 window = m_called->window(kWindow);
        QVERIFY(window != 0 && m_called->waitUntilActive(window));
        QVERIFY(m_called->turnAway());
        QVERIFY(m_icon->activate());
        QVERIFY(m_called->waitUntilActive(window));
        QVERIFY(m_called->press(u"alt+F4"_s));
        QVERIFY2(m_called->waitUntilNoWindow(), "nothing is said: the icon is there");
        QVERIFY(m_called->turnAway());
        QVERIFY(m_icon->choose(u"Open Mossbank"_s));
        const quint32 again = m_called->window(kWindow);
        QVERIFY(again != 0 && m_called->waitUntilActive(again));
        QCOMPARE(m_called->windows(), 1);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void withoutAPanelWhoeverClosesTheWindowIsToldOnce()
    {
        m_panel.reset();
        mossbank().openWindow();
        QVERIFY(start(kRecords));
        for (int time = 0; time < 2; ++time) {
            const quint32 window = m_called->window(kWindow);
            QVERIFY(window != 0 && m_called->waitUntilActive(window));
            QVERIFY(m_called->press(u"alt+F4"_s));
            if (time == 0) {
                const quint32 notice = m_called->window(kNotice);
                QVERIFY(notice != 0 && m_called->waitUntilActive(notice));
            } else {
                QVERIFY(m_called->waitUntilNoWindow());
                QVERIFY(m_called->waitForAnotherPicture());
                QCOMPARE(m_called->windows(), 0);
            }
            // As it says: the window is there again, and it is not.
            QCOMPARE(mossbank().startAgain().status, 0);
            QVERIFY(m_called->window(kWindow) != 0);
            QCOMPARE(m_called->windows(), 1);
        }
        QCOMPARE(mossbank().choice(u"hasSeenClosingNotice"_s), u"true"_s);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void quitWhileItRecordsIsAskedAbout()
    {
        QVERIFY(start(kRecords));
        QVERIFY(waitForIcon());
        QVERIFY(m_icon->choose(u"Quit Mossbank"_s));
        const quint32 question = m_called->window(kQuestion);
        QVERIFY(question != 0 && m_called->waitUntilActive(question));
        QVERIFY(m_called->press(u"ctrl+q"_s));
        QCOMPARE(mossbank().waitForEnd(), 0);
    }

    void quitWhileItRestsIsTheEnd()
    {
        m_called->choose(kByHand);
        QVERIFY(start(kRests));
        QVERIFY(waitForIcon());
        m_icon->choose(u"Quit Mossbank"_s);
        QCOMPARE(mossbank().waitForEnd(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_panel->icons(), QStringList(), kPatience);
    }

    void aMenuThatIsOpenFollows()
    {
        m_called->choose(kByHand);
        QVERIFY(start(kRests));
        QVERIFY(waitForIcon());
        BusConnection bus(QDBusConnection::SessionBus);
        QVERIFY(bus->connect({}, {}, u"com.canonical.dbusmenu"_s, u"ItemsPropertiesUpdated"_s, this,
                             SLOT(hearChanges(QDBusMessage))));
        QVERIFY(m_icon->open());
        const SentMenu before = m_icon->menu();
        QVERIFY(m_icon->choose(u"Start Recording"_s));
        QVERIFY(waitUntilShown(kOn));
        // Whoever has it open learns what has changed, and what was there stays what it was.
        QTRY_VERIFY_WITH_TIMEOUT(m_changes.contains(u"Pause Recording"_s), kPatience);
        QVERIFY(m_changes.contains(u"Pause For"_s));
        const SentMenu after = m_icon->menu();
        QCOMPARE(after.entries.size(), before.entries.size());
        for (qsizetype place = 0; place < after.entries.size(); ++place)
            QCOMPARE(after.entries.at(place).number, before.entries.at(place).number);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void aPanelThatComesLaterHasTheIcon_data()
    {
        QTest::addColumn<bool>("isWatcherThere");
        QTest::newRow("all of it") << false;
        QTest::newRow("what shows the icons") << true;
    }
    void aPanelThatComesLaterHasTheIcon()
    {
        QFETCH(bool, isWatcherThere);
        constexpr int kMilliseconds = 3000;
        m_panel.reset();
        if (isWatcherThere)
            m_panel = std::make_unique<NotifierPanel>(false);
        QVERIFY(start(kRecords));
        QTest::qWait(kMilliseconds);
        if (isWatcherThere) {
            QCOMPARE(m_panel->icons(), QStringList());
            m_panel->setHost(true);
        } else {
            m_panel = std::make_unique<NotifierPanel>();
        }
        QVERIFY(waitForIcon());
        QVERIFY(waitUntilShown(kOn));
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void aPanelThatComesBackHasItAgain()
    {
        QVERIFY(start(kRecords));
        QVERIFY(waitForIcon());
        for (int time = 0; time < 2; ++time) {
            m_panel.reset();
            QVERIFY(m_called->waitForAnotherPicture());
            m_panel = std::make_unique<NotifierPanel>();
            QVERIFY(waitForIcon());
            QVERIFY(waitUntilShown(kOn));
        }
        m_panel->setHost(false);
        m_panel->setHost(true);
        QVERIFY(m_called->waitForAnotherPicture());
        QVERIFY(waitForIcon());
        QCOMPARE(mossbank().stop(SIGTERM), 0);
    }

    void theSampleLibraryHasOneThatStartsNothing()
    {
        QVERIFY(m_called->start(kRests, {u"--demo"_s}));
        QVERIFY(waitForIcon());
        QVERIFY(waitUntilShown(QStringList{u"[Start Recording]"_s, u"[Capture Now]"_s} + kEnd));
        m_icon->choose(u"Quit Mossbank"_s);
        QCOMPARE(mossbank().waitForEnd(), 0);
    }

    void withoutAnyPanelItRecords()
    {
        m_panel.reset();
        QVERIFY(start(kRecords));
        QVERIFY(m_called->waitForAnotherPicture());
        QVERIFY(m_called->waitForAnotherPicture());
        QCOMPARE(m_called->windows(), 0);
        QCOMPARE(mossbank().stop(SIGTERM), 0);
        QVERIFY2(!mossbank().terminal().contains(u"place for the icons"_s), "that is ordinary");
    }

    void hearChanges(const QDBusMessage& message)
    {
        const auto entries = message.arguments().value(0).value<QDBusArgument>();
        entries.beginArray();
        while (!entries.atEnd()) {
            int number = 0;
            QVariantMap properties;
            entries.beginStructure();
            entries >> number >> properties;
            entries.endStructure();
            m_changes.append(properties.value(u"label"_s).toString());
        }
        entries.endArray();
    }
};

QTEST_GUILESS_MAIN(TrayTest)
#include "TrayTest.moc"

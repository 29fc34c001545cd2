// SPDX-License-Identifier: Apache-2.0
//
// The main window without a mouse.
#include "tests/Views/WorkspaceWindowRig.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

class WorkspaceKeysTest : public QObject, private WorkspaceWindowRig {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void everyButtonInSightIsReachedByTheTabKey()
    {
        addThree();
        open();
        QStringList reached;
        for (int step = 0; step < 80; ++step) {
            QTest::keyClick(&window(), Qt::Key_Tab);
            reached.append(focused());
        }
        for (const QString& name :
             {u"Search screen history"_s, u"Start recording"_s, u"Moments"_s, u"Previous month"_s,
              u"Today"_s, u"All history"_s, u"All applications"_s, u"Editor"_s,
              u"Appearance: Match System"_s, u"Previous day"_s, u"Previous screenshot"_s,
              u"Enlarge screenshot"_s, u"Show recognized text"_s, u"Copy image"_s,
              u"Delete screenshot"_s, u"Screenshot of Editor"_s,
              // The strip, at the one that is selected.
              u"Editor · "_s + m_rig->calendar().shortTime(WorkspaceRig::kToday + 10'800)})
            QVERIFY2(reached.contains(name),
                     qPrintable(name + u" is not among "_s + reached.join(u'|')));
    }

    void theListIsWalkedFromTheSearchField()
    {
        addThree();
        open();
        QCOMPARE(selected(), u"c"_s);
        QTest::keyClick(&window(), Qt::Key_Down);
        QTest::keyClick(&window(), Qt::Key_Down);
        QCOMPARE(selected(), u"a"_s);
        QTest::keyClick(&window(), Qt::Key_Up);
        QCOMPARE(selected(), u"b"_s);
        QTest::keyClick(&window(), Qt::Key_Return);
        QTRY_VERIFY(shows(QAccessible::Dialog, u"Enlarged screenshot of Editor"_s));
        QTest::keyClick(&window(), Qt::Key_Escape);
        QTRY_VERIFY(!m_rig->listing().showsEnlarged());
        // The keys are the field's again.
        type(u"m"_s);
        QCOMPARE(m_rig->listing().query(), u"m"_s);
    }

    void recordingIsSwitchedByKeys()
    {
        open();
        constexpr auto kControlShift = Qt::ControlModifier | Qt::ShiftModifier;
        QTest::keyClick(&window(), Qt::Key_R, kControlShift);
        QVERIFY(m_rig->recorder().isRecording());
        QTest::keyClick(&window(), Qt::Key_R, kControlShift);
        QVERIFY(!m_rig->recorder().isRecording());
    }

    void whatLiesOverTheWindowHasAllKeys()
    {
        addThree();
        open();
        QVERIFY(press(u"Enlarge screenshot"_s));
        QTRY_COMPARE(focused(), u"Done"_s);
        QTest::keyClick(&window(), Qt::Key_F, Qt::ControlModifier);
        QSet<QString> reached;
        for (int step = 0; step < 12; ++step) {
            reached.insert(focused());
            QTest::keyClick(&window(), Qt::Key_Tab);
        }
        QCOMPARE(reached, (QSet<QString>{u"Fit"_s, u"Actual Size"_s, u"Zoom Out"_s, u"Zoom In"_s,
                                         u"Done"_s}));
        QTest::keyClick(&window(), Qt::Key_Escape);
        QTRY_VERIFY(!m_rig->listing().showsEnlarged());
        QTRY_COMPARE(focused(), u"Search screen history"_s);
    }

    void theEndOfTheProgramIsAskedForByAKey()
    {
        open();
        QSignalSpy quits(m_workspace.get(), &WorkspaceWindow::quits);
        QTest::keyClick(&window(), Qt::Key_Q, Qt::ControlModifier);
        QCOMPARE(quits.size(), 1);
    }

    void aButtonThatIsOfNoUseAnyMoreHandsTheKeysOn()
    {
        addThree();
        open();
        for (int step = 0; step < 80 && focused() != u"Previous screenshot"; ++step)
            QTest::keyClick(&window(), Qt::Key_Tab);
        QTest::keyClick(&window(), Qt::Key_Return);
        QTest::keyClick(&window(), Qt::Key_Return);
        QCOMPARE(selected(), u"a"_s);
        QTRY_COMPARE(focused(), u"Next screenshot"_s);
        // What comes to lie over it takes the keys, and gives them back.
        QVERIFY(press(u"Delete screenshot"_s));
        QTRY_COMPARE(focused(), u"Cancel"_s);
        QTest::keyClick(&window(), Qt::Key_Escape);
        QTRY_COMPARE(focused(), u"Next screenshot"_s);
    }

    void theCalendarIsWalkedByItsDays()
    {
        addThree();
        open();
        const auto dayBefore = [this](int days) {
            return WorkspaceRig::kToday - days * WorkspaceRig::kDay;
        };
        const auto reads = [this, dayBefore](int days) {
            return focused().startsWith(m_rig->calendar().fullDate(dayBefore(days)));
        };
        for (int step = 0; step < 80 && !reads(0); ++step)
            QTest::keyClick(&window(), Qt::Key_Tab);
        QVERIFY(reads(0));
        QTest::keyClick(&window(), Qt::Key_Left);
        QCOMPARE(m_rig->listing().day(), std::optional(dayBefore(1)));
        QTRY_VERIFY(reads(1));
        QTest::keyClick(&window(), Qt::Key_Up);
        QTRY_VERIFY(reads(8));
        // Into the month before, and back.
        QTest::keyClick(&window(), Qt::Key_Up);
        QTRY_VERIFY2(reads(15), qPrintable(focused()));
        QTest::keyClick(&window(), Qt::Key_Down);
        QTRY_VERIFY(reads(8));
        // There is nothing after today.
        QTest::keyClick(&window(), Qt::Key_Down);
        QTest::keyClick(&window(), Qt::Key_Right);
        QTest::keyClick(&window(), Qt::Key_Right);
        QTRY_VERIFY(reads(0));
        // A day that is chosen elsewhere takes no focus.
        QTest::keyClick(&window(), Qt::Key_F, Qt::ControlModifier);
        m_rig->listing().setDay(dayBefore(2));
        QCoreApplication::processEvents();
        QCOMPARE(focused(), u"Search screen history"_s);
    }
};

QTEST_MAIN(WorkspaceKeysTest)
#include "WorkspaceKeysTest.moc"

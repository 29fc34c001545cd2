// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ClosingNotice/ClosingNotice.h"

#include "tests/Fakes/FakeTrayHost.h"
#include "tests/Model/RecorderRig.h"
#include "tests/Views/AccessibleView.h"

#include <QGuiApplication>
#include <QTest>
#include <QWindow>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class ClosingNoticeTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<RecorderRig> m_rig;
    FakeTrayHost m_host;
    std::unique_ptr<ClosingNotice> m_notice;

    static QWindow* window()
    {
        for (QWindow* const one : QGuiApplication::topLevelWindows()) {
            if (one->isVisible())
                return one;
        }
        return nullptr;
    }

    Recorder& recorder() { return *m_rig->recorder; }

    /// The user has closed the window while it records.
    bool opens()
    {
        if (!recorder().isRecording())
            recorder().toggleRecording();
        m_notice->windowClosed();
        return window() && QTest::qWaitFor([] { return window() && window()->isActive(); }, 10'000);
    }

private Q_SLOTS:
    void init()
    {
        m_host.setThere(false);
        m_rig = std::make_unique<RecorderRig>();
        m_notice = std::make_unique<ClosingNotice>(m_rig->preferences, recorder(), m_host);
    }
    void cleanup()
    {
        m_notice.reset();
        QVERIFY(!window());
        m_rig.reset();
    }

    void itSaysThatRecordingGoesOnAndHowToComeBack()
    {
        QVERIFY(opens());
        QCOMPARE(window()->title(), u"Mossbank keeps recording"_s);
        const AccessibleView view(*window());
        QCOMPARE(view.names(QAccessible::StaticText),
                 (QStringList{u"Mossbank keeps recording"_s,
                              u"The window is closed, and Mossbank goes on in the background. This "
                              "desktop has no place for its icon: to see Mossbank again, start it "
                              "once more."_s}));
        QCOMPARE(view.names(QAccessible::Button), QStringList{u"OK"_s});
        const QRect frame(window()->position(), window()->size());
        const QRect button = view.find(QAccessible::Button, u"OK"_s)->rect();
        const QRect text =
            view.find(QAccessible::StaticText, view.names(QAccessible::StaticText).at(1))->rect();
        QVERIFY(frame.contains(button) && frame.contains(text));
        QVERIFY(button.top() > text.bottom());
    }

    void itGoesWhenItWasSeen_data()
    {
        QTest::addColumn<QString>("way");
        for (const char* way : {"OK", "Return", "Escape", "closed", "the user comes back"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }
    void itGoesWhenItWasSeen()
    {
        QFETCH(QString, way);
        QVERIFY(opens());
        if (way == u"OK")
            QVERIFY(AccessibleView(*window()).press(way));
        else if (way == u"Return")
            QTest::keyClick(window(), Qt::Key_Return);
        else if (way == u"Escape")
            QTest::keyClick(window(), Qt::Key_Escape);
        else if (way == u"closed")
            window()->close();
        else
            m_notice->dismiss();
        QVERIFY(!window());
        QVERIFY(!m_notice->isOpen());
        QTRY_COMPARE(QGuiApplication::topLevelWindows().size(), 0);
        QVERIFY(recorder().isRecording());
    }

    void itIsSaidOnceEver()
    {
        QVERIFY(!m_notice->isOpen());
        QVERIFY(opens());
        QVERIFY(m_notice->isOpen());
        QVERIFY(m_rig->preferences.hasSeenClosingNotice());
        m_notice->dismiss();
        QTRY_VERIFY(!window());
        m_notice->windowClosed();
        QVERIFY(!window());
        // Also by the next run.
        Preferences next(m_rig->preferences.path());
        ClosingNotice another(next, recorder(), m_host);
        another.windowClosed();
        QVERIFY(!window());
    }

    void nothingIsSaidWhereTheIconSaysItOrThereIsNothingToSay_data()
    {
        QTest::addColumn<bool>("isRecording");
        QTest::addColumn<bool>("hasTray");
        QTest::newRow("at rest") << false << false;
        QTest::newRow("with an icon in the tray") << true << true;
        QTest::newRow("both") << false << true;
    }
    void nothingIsSaidWhereTheIconSaysItOrThereIsNothingToSay()
    {
        QFETCH(bool, isRecording);
        QFETCH(bool, hasTray);
        m_host.setThere(hasTray);
        if (isRecording)
            recorder().toggleRecording();
        QCOMPARE(recorder().isRecording(), isRecording);
        m_notice->windowClosed();
        QVERIFY(!window());
        QVERIFY(!m_rig->preferences.hasSeenClosingNotice());
        // What was not said is said when its time comes.
        m_host.setThere(false);
        QVERIFY(opens());
    }
};

QTEST_MAIN(ClosingNoticeTest)
#include "ClosingNoticeTest.moc"

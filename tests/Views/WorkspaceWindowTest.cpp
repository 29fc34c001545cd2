// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/WorkspaceWindow.h"

#include "tests/Views/AccessibleView.h"
#include "tests/Views/WorkspaceRig.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class WorkspaceWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_rig = std::make_unique<WorkspaceRig>();
        m_workspace = std::make_unique<WorkspaceWindow>(m_rig->parts());
    }
    void cleanup()
    {
        m_workspace.reset();
        m_rig.reset();
    }

    // Coming and going

    void itIsThereWhileItIsOpen()
    {
        QSignalSpy closed(m_workspace.get(), &WorkspaceWindow::closed);
        QSignalSpy closedByUser(m_workspace.get(), &WorkspaceWindow::closedByUser);
        QVERIFY(!m_workspace->isOpen());
        open();
        QVERIFY(m_rig->listing().showsWorkspace());
        QCOMPARE(window().title(), u"Mossbank"_s);
        m_workspace->open();
        QCOMPARE(QGuiApplication::topLevelWindows().size(), 1);
        m_workspace->close();
        QVERIFY(!m_workspace->isOpen());
        QVERIFY(!m_rig->listing().showsWorkspace());
        QCOMPARE(closed.size(), 1);
        QCOMPARE(closedByUser.size(), 0);
        QTRY_COMPARE(QGuiApplication::topLevelWindows().size(), 0);
    }

    void itIsClosedByTheUser()
    {
        QSignalSpy closedByUser(m_workspace.get(), &WorkspaceWindow::closedByUser);
        open();
        QTest::keyClick(&window(), Qt::Key_W, Qt::ControlModifier);
        QTRY_VERIFY(!m_workspace->isOpen());
        QCOMPARE(closedByUser.size(), 1);
        QVERIFY(!m_rig->listing().showsWorkspace());
        open();
        QVERIFY(m_workspace->isOpen());
    }

    // The list

    void aFirstRunBeginsWithAButton()
    {
        open();
        QVERIFY(shows(QAccessible::Heading, u"Give your day a memory."_s));
        QVERIFY(press(u"Start recording"_s));
        QVERIFY(m_rig->recorder().isRecording());
        QTRY_VERIFY(shows(QAccessible::Button, u"Pause"_s));
        QVERIFY(shows(QAccessible::StaticText, u"Recording"_s));
    }

    void theDayIsShownInAStrip()
    {
        addThree();
        open();
        QTRY_COMPARE(view().names(QAccessible::ListItem).size(), 3);
        QVERIFY(view().names(QAccessible::ListItem).first().startsWith(u"Editor · "_s));
        QVERIFY(shows(QAccessible::Heading, u"Today"_s));
        QVERIFY(shows(QAccessible::StaticText, u"3 moments"_s));
        QVERIFY(shows(QAccessible::Button, u"Screenshot of Editor"_s));
    }

    void whatIsTypedIsLookedFor()
    {
        addThree();
        open();
        type(u"heron"_s);
        QCOMPARE(m_rig->listing().query(), u"heron"_s);
        m_rig->settle();
        QTRY_VERIFY(shows(QAccessible::StaticText, u"1 match"_s));
        QTRY_COMPARE(view().names(QAccessible::ListItem).size(), 1);
        QTest::keyClick(&window(), Qt::Key_Escape);
        QCOMPARE(m_rig->listing().query(), QString());
        m_rig->settle();
        QTRY_COMPARE(view().names(QAccessible::ListItem).size(), 3);
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

    void itIsSteppedByKeysAndButtons()
    {
        addThree();
        open();
        // Also from the search field, as long as there are no words in it to go by.
        QTest::keyClick(&window(), Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(selected(), u"b"_s);
        QTest::keyClick(&window(), Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(selected(), u"c"_s);
        QVERIFY(press(u"Previous screenshot"_s));
        QVERIFY(press(u"Previous screenshot"_s));
        QCOMPARE(selected(), u"a"_s);
        // There is none before it.
        QVERIFY(press(u"Previous screenshot"_s));
        QCOMPARE(selected(), u"a"_s);
        QVERIFY(press(u"Next screenshot"_s));
        QCOMPARE(selected(), u"b"_s);
    }

    void daysAreSteppedAsFarAsToday()
    {
        addThree();
        open();
        QVERIFY(press(u"Next day"_s));
        QCOMPARE(m_rig->listing().day(), std::optional(WorkspaceRig::kToday));
        QVERIFY(press(u"Previous day"_s));
        QVERIFY(press(u"Previous day"_s));
        QVERIFY(press(u"Next day"_s));
        QCOMPARE(m_rig->listing().day(), std::optional(WorkspaceRig::kToday - WorkspaceRig::kDay));
        QTest::keyClick(&window(), Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(m_rig->listing().day(), std::optional(WorkspaceRig::kToday));
    }

    void aDayWithoutAnythingLeadsOn()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday - WorkspaceRig::kDay);
        open();
        const QString button = u"Go to "_s + m_rig->calendar().shortMonthAndDay(
                                                 WorkspaceRig::kToday - WorkspaceRig::kDay);
        QVERIFY(pressWhenThere(button));
        m_rig->settle();
        QTRY_COMPARE(view().names(QAccessible::ListItem).size(), 1);
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

    // The viewer

    void theWordsAreShownAndCopied()
    {
        addThree();
        open();
        m_rig->listing().setSelectedID(u"b"_s);
        QVERIFY(press(u"Show recognized text"_s));
        QTRY_VERIFY(view().find(QAccessible::EditableText, u"Recognized text"_s));
        QAccessibleInterface* const text =
            view().find(QAccessible::EditableText, u"Recognized text"_s);
        QCOMPARE(text->text(QAccessible::Value), u"a heron"_s);
        QVERIFY(press(u"Copy text"_s));
        QCOMPARE(QGuiApplication::clipboard()->text(), u"a heron"_s);
        QVERIFY(press(u"Hide recognized text"_s));
        QTRY_VERIFY(!view().find(QAccessible::EditableText, u"Recognized text"_s));
    }

    void thePictureIsCopied()
    {
        addThree();
        open();
        QVERIFY(press(u"Copy image"_s));
        QTRY_COMPARE(QGuiApplication::clipboard()->image().size(), QSize(320, 200));
    }

    void aPictureThatHasGoneIsSaidToHave()
    {
        addThree();
        m_rig->removePicture(u"c"_s);
        open();
        QTRY_VERIFY(shows(QAccessible::StaticText, u"Screenshot unavailable"_s));
        m_rig->listing().setSelectedID(u"b"_s);
        QTRY_VERIFY(!shows(QAccessible::StaticText, u"Screenshot unavailable"_s));
    }

    void oneIsDeletedAfterAQuestion()
    {
        addThree();
        open();
        QVERIFY(press(u"Delete screenshot"_s));
        QTRY_VERIFY(shows(QAccessible::Dialog, u"Delete this screenshot?"_s));
        QVERIFY(press(u"Cancel"_s));
        QTRY_VERIFY(!shows(QAccessible::Dialog, u"Delete this screenshot?"_s));
        QCOMPARE(m_rig->listing().memories().size(), 3);
        QVERIFY(press(u"Delete screenshot"_s));
        // The way back is what the return key takes.
        QTRY_VERIFY(view().find(QAccessible::Button, u"Cancel"_s)->state().focused);
        QTest::keyClick(&window(), Qt::Key_Tab);
        QTest::keyClick(&window(), Qt::Key_Return);
        QTRY_COMPARE(m_rig->listing().memories().size(), 2);
        QCOMPARE(selected(), u"b"_s);
    }

    void aQuestionIsOfOneScreenshotAlone()
    {
        addThree();
        open();
        QVERIFY(press(u"Delete screenshot"_s));
        QTRY_VERIFY(shows(QAccessible::Dialog, u"Delete this screenshot?"_s));
        QTest::keyClick(&window(), Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(selected(), u"c"_s);
        m_rig->listing().setSelectedID(u"a"_s);
        QTRY_VERIFY(!shows(QAccessible::Dialog, u"Delete this screenshot?"_s));
        QCOMPARE(m_rig->listing().memories().size(), 3);
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

    void theAppearanceIsChosenFromAMenu()
    {
        open();
        QVERIFY(press(u"Appearance: Match System"_s));
        const auto choose = [this] {
            QAccessibleInterface* const item = view().find(QAccessible::MenuItem, u"Dark"_s);
            if (!item || !item->actionInterface())
                return false;
            item->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            return true;
        };
        QVERIFY(QTest::qWaitFor(choose));
        QCOMPARE(m_rig->preferences().appearanceMode(), u"dark"_s);
        QTRY_VERIFY(!view().find(QAccessible::MenuItem, u"Dark"_s));
        QVERIFY(shows(QAccessible::Button, u"Appearance: Dark"_s));
    }

    void theEndOfTheProgramIsAskedForByAKey()
    {
        open();
        QSignalSpy quits(m_workspace.get(), &WorkspaceWindow::quits);
        QTest::keyClick(&window(), Qt::Key_Q, Qt::ControlModifier);
        QCOMPARE(quits.size(), 1);
    }

    void itIsEnlargedAndZoomed()
    {
        addThree();
        open();
        QVERIFY(press(u"Enlarge screenshot"_s));
        QTRY_VERIFY(shows(QAccessible::StaticText, u"100 %"_s));
        QVERIFY(press(u"Zoom In"_s));
        QTRY_VERIFY(shows(QAccessible::StaticText, u"125 %"_s));
        QTest::keyClick(&window(), Qt::Key_Minus, Qt::ControlModifier);
        QTest::keyClick(&window(), Qt::Key_Minus, Qt::ControlModifier);
        QTRY_VERIFY(shows(QAccessible::StaticText, u"80 %"_s));
        QTest::keyClick(&window(), Qt::Key_0, Qt::ControlModifier);
        QTRY_VERIFY(shows(QAccessible::StaticText, u"100 %"_s));
        QVERIFY(press(u"Done"_s));
        QTRY_VERIFY(!m_rig->listing().showsEnlarged());
    }

    void whatIsGoneWhileItIsEnlargedIsSaidToBe()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60);
        open();
        QVERIFY(press(u"Enlarge screenshot"_s));
        m_rig->listing().deleteSelected();
        QTRY_VERIFY(
            shows(QAccessible::StaticText, u"It was removed from Mossbank while it was open."_s));
    }

    // Banners

    void anErrorIsDismissed()
    {
        open();
        m_rig->recorder().setErrorMessage(u"The disk is full."_s);
        QTRY_VERIFY(shows(QAccessible::AlertMessage, u"The disk is full."_s));
        QVERIFY(press(u"Dismiss error"_s));
        QTRY_VERIFY(!shows(QAccessible::AlertMessage, u"The disk is full."_s));
    }

    void theHintIsUnderstood()
    {
        addThree();
        open();
        QVERIFY(pressWhenThere(u"Got it"_s));
        QVERIFY(m_rig->preferences().hasSeenSearchHint());
    }

    // For everyone

    void everyButtonHasAName()
    {
        addThree();
        open();
        const QStringList names = view().names(QAccessible::Button);
        QVERIFY(names.size() > 20);
        QVERIFY2(!names.contains(QString()), qPrintable(names.join(u'|')));
    }

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

    void nothingMovesWhereTheDesktopAsksForThat()
    {
        m_rig->desktop.reduceMotion(true);
        open();
        auto* const dot = window().findChild<QQuickItem*>(u"dot"_s);
        QVERIFY(dot);
        m_rig->recorder().toggleRecording();
        QVERIFY(!dot->property("isBreathing").toBool());
        m_rig->desktop.reduceMotion(false);
        QVERIFY(dot->property("isBreathing").toBool());
        QTRY_VERIFY(dot->opacity() < 0.9);
        m_rig->desktop.reduceMotion(true);
        QVERIFY(!dot->property("isBreathing").toBool());
        QCOMPARE(dot->opacity(), 1.0);
    }

private:
    void addThree()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 3600);
        m_rig->add(u"b"_s, WorkspaceRig::kToday + 7200, u"Editor"_s, u"a heron"_s, Qt::darkBlue);
        m_rig->add(u"c"_s, WorkspaceRig::kToday + 10'800, u"Editor"_s, u"moss"_s, Qt::darkRed);
    }

    void open()
    {
        m_workspace->open();
        QVERIFY(QTest::qWaitForWindowActive(&window()));
        m_rig->settle();
    }

    QQuickWindow& window() const { return *m_workspace->window(); }
    AccessibleView view() const { return AccessibleView(window()); }
    bool shows(QAccessible::Role role, const QString& name) const
    {
        return view().find(role, name);
    }
    bool press(const QString& button) const { return view().press(button); }
    bool pressWhenThere(const QString& button) const
    {
        return QTest::qWaitFor([&] { return press(button); });
    }
    QString selected() const { return m_rig->listing().selectedID().value_or(QString()); }

    QString focused() const
    {
        QAccessibleInterface* const part =
            QAccessible::queryAccessibleInterface(&window())->focusChild();
        return part ? part->text(QAccessible::Name) : QString();
    }

    void type(const QString& text) const
    {
        for (const QChar letter : text)
            QTest::keyClick(&window(), letter.toLatin1());
    }

    std::unique_ptr<WorkspaceRig> m_rig;
    std::unique_ptr<WorkspaceWindow> m_workspace;
};

QTEST_MAIN(WorkspaceWindowTest)
#include "WorkspaceWindowTest.moc"

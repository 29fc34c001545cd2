// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/WorkspaceWindow.h"

#include "tests/Views/WorkspaceWindowRig.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class WorkspaceWindowTest : public QObject, private WorkspaceWindowRig {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

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

    void theSelectedOneIsInSightWhateverIsChosen()
    {
        addThree();
        for (int one = 0; one < 12; ++one)
            m_rig->add(u"y%1"_s.arg(one), WorkspaceRig::kToday - 3600 + one * 60, u"Quill"_s);
        open();
        const auto seen = [this] {
            const auto* const strip = window().findChild<QQuickItem*>(u"filmstrip"_s);
            const auto* const tile = strip->property("currentItem").value<QQuickItem*>();
            const double at = tile ? tile->x() - strip->property("contentX").toDouble() : -1;
            return at >= 0 && at + tile->width() <= strip->width();
        };
        QTRY_VERIFY(seen());
        m_rig->listing().setDay(std::nullopt);
        m_rig->settle();
        QCOMPARE(m_rig->listing().memories().size(), 15);
        QCOMPARE(selected(), u"c"_s);
        QTRY_VERIFY(seen());
        m_rig->listing().setSelectedID(u"y0"_s);
        QTRY_VERIFY(seen());
        m_rig->listing().setAppFilter(u"Quill"_s);
        m_rig->settle();
        QTRY_VERIFY(seen());
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

    void theEnlargedOneStaysUntilTheNextIsThere()
    {
        addThree();
        m_rig->removePicture(u"a"_s);
        open();
        QVERIFY(press(u"Enlarge screenshot"_s));
        auto* const picture = window().findChild<QQuickItem*>(u"enlargedPicture"_s);
        QVERIFY(picture);
        QTRY_COMPARE(picture->property("pixels").toSizeF(), QSizeF(320, 200));
        QSignalSpy sizes(picture, SIGNAL(pixelsChanged()));
        QTest::keyClick(&window(), Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(selected(), u"b"_s);
        QTRY_COMPARE(
            window().grabWindow().pixelColor(window().width() / 2, window().height() / 2).blue() /
                100,
            QColor(Qt::darkBlue).blue() / 100);
        QCOMPARE(sizes.size(), 0);
        QTest::keyClick(&window(), Qt::Key_Left, Qt::ControlModifier);
        QTRY_VERIFY(shows(QAccessible::Dialog, u"Enlarged screenshot of Editor"_s) &&
                    shows(QAccessible::StaticText, u"Screenshot unavailable"_s));
        QTest::keyClick(&window(), Qt::Key_Right, Qt::ControlModifier);
        QTRY_VERIFY(!shows(QAccessible::StaticText, u"Screenshot unavailable"_s));
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
};

QTEST_MAIN(WorkspaceWindowTest)
#include "WorkspaceWindowTest.moc"

// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ApplicationChooser/ApplicationChooserWindow.h"

#include "tests/Fakes/FakeInstalledApplications.h"
#include "tests/Views/AccessibleView.h"

#include <QGuiApplication>
#include <QTest>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

const QString kTitle = u"Exclude an application"_s;
const Application kHeron{u"org.example.Heron"_s, u"Heron"_s};
const Application kMartin{u"org.example.Martin"_s, u"Martin"_s};
const Application kWren{u"org.example.Wren"_s, u"Wren"_s};

} // namespace

class ApplicationChooserWindowTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_installed.installed = {{kWren}, {kHeron, u"no-such-icon"_s}, {kMartin}};
        m_chooser = std::make_unique<ApplicationChooserWindow>(m_installed);
    }
    void cleanup()
    {
        m_chooser.reset();
        QVERIFY(!window());
    }

    void itSaysWhatItIsForAndShowsWhatIsInstalled()
    {
        const auto answer = choose();
        QCOMPARE(window()->title(), kTitle);
        const AccessibleView view(*window());
        QVERIFY(view.find(QAccessible::List, kTitle));
        QTRY_COMPARE(view.names(QAccessible::ListItem),
                     (QStringList{u"Heron"_s, u"Martin"_s, u"Wren"_s}));
        QCOMPARE(view.names(QAccessible::Button), (QStringList{u"Cancel"_s, u"Choose"_s}));
        QVERIFY(!answer.isFinished());
    }

    void theOneThatIsPressedIsChosen()
    {
        const auto answer = choose();
        const AccessibleView view(*window());
        QTRY_VERIFY(view.find(QAccessible::ListItem, u"Martin"_s));
        const QRect row = view.find(QAccessible::ListItem, u"Martin"_s)->rect();
        QTest::mouseClick(window(), Qt::LeftButton, {}, window()->mapFromGlobal(row.center()));
        QTRY_VERIFY(view.find(QAccessible::ListItem, u"Martin"_s)->state().selected);
        QVERIFY(view.press(u"Choose"_s));
        QCOMPARE(answer.result(), std::optional(kMartin));
        QTRY_VERIFY(!window());
    }

    void itIsChosenByTheKeyboardAlone()
    {
        const auto answer = choose();
        QTest::keyClick(window(), Qt::Key_Down);
        QTest::keyClick(window(), Qt::Key_Down);
        QTest::keyClick(window(), Qt::Key_Up);
        QTest::keyClick(window(), Qt::Key_Return);
        QCOMPARE(answer.result(), std::optional(kMartin));
    }

    void whatIsTypedIsLookedFor()
    {
        const auto answer = choose();
        const AccessibleView view(*window());
        type(u"wr"_s);
        QTRY_COMPARE(view.names(QAccessible::ListItem), QStringList{u"Wren"_s});
        QTest::keyClick(window(), Qt::Key_Return);
        QCOMPARE(answer.result(), std::optional(kWren));
    }

    void whereNothingIsLeftNothingCanBeChosen()
    {
        const auto answer = choose();
        const AccessibleView view(*window());
        type(u"kingfisher"_s);
        QTRY_VERIFY(view.find(QAccessible::StaticText, u"No application has this name"_s));
        QVERIFY(view.press(u"Choose"_s));
        QTest::keyClick(window(), Qt::Key_Return);
        QVERIFY(!answer.isFinished());
        QTest::keyClick(window(), Qt::Key_Tab);
        QTest::keyClick(window(), Qt::Key_Return);
        QVERIFY2(answer.isFinished() && !answer.result(), "the next one after the field is Cancel");
    }

    void everyPartIsReachedByTheTabKey()
    {
        const auto answer = choose();
        const AccessibleView view(*window());
        const auto focused = [&] {
            QAccessibleInterface* const part =
                QAccessible::queryAccessibleInterface(window())->focusChild();
            return part ? part->text(QAccessible::Name) : QString();
        };
        QTRY_COMPARE(focused(), u"Search applications"_s);
        QTest::keyClick(window(), Qt::Key_Tab);
        QCOMPARE(focused(), u"Cancel"_s);
        QTest::keyClick(window(), Qt::Key_Tab);
        QCOMPARE(focused(), u"Choose"_s);
        QTest::keyClick(window(), Qt::Key_Return);
        QCOMPARE(answer.result(), std::optional(kHeron));
    }

    void whoDoesNotChooseHasChosenNothing_data()
    {
        QTest::addColumn<QString>("way");
        for (const auto& way : {u"button"_s, u"escape"_s, u"closed"_s, u"the chooser goes"_s})
            QTest::addRow("%s", qPrintable(way)) << way;
    }
    void whoDoesNotChooseHasChosenNothing()
    {
        QFETCH(QString, way);
        const auto answer = choose();
        if (way == u"button")
            QVERIFY(AccessibleView(*window()).press(u"Cancel"_s));
        else if (way == u"escape")
            QTest::keyClick(window(), Qt::Key_Escape);
        else if (way == u"closed")
            window()->close();
        else
            m_chooser.reset();
        QVERIFY(answer.isFinished());
        QVERIFY(!answer.result());
        QTRY_VERIFY(!window());
    }

    void itCanBeOpenedAgain()
    {
        for (int time = 0; time < 3; ++time) {
            const auto answer = choose();
            QTest::keyClick(window(), Qt::Key_Return);
            QCOMPARE(answer.result(), std::optional(kHeron));
        }
    }

    void whileItIsOpenThereIsNoOther()
    {
        const auto answer = choose();
        const auto second = m_chooser->choose(kTitle);
        QVERIFY(second.isFinished());
        QVERIFY(!second.result());
        QCOMPARE(QGuiApplication::topLevelWindows().size(), 1);
        QVERIFY(!answer.isFinished());
    }

    void whatWasInstalledSinceIsShown()
    {
        {
            const auto answer = choose();
            QTest::keyClick(window(), Qt::Key_Escape);
            QTRY_VERIFY(!window());
        }
        m_installed.installed = {{kMartin}};
        const auto answer = choose();
        QTest::keyClick(window(), Qt::Key_Return);
        QCOMPARE(answer.result(), std::optional(kMartin));
    }

private:
    static QWindow* window() { return QGuiApplication::topLevelWindows().value(0); }

    static void type(const QString& text)
    {
        for (const QChar letter : text)
            QTest::keyClick(window(), letter.toLatin1());
    }

    /// Opened, and ready to be pressed.
    QFuture<std::optional<Application>> choose()
    {
        auto answer = m_chooser->choose(kTitle);
        if (answer.isFinished())
            answer.waitForFinished(); // throws why
        const auto isReady = [] {
            return window() && window()->isVisible() && window()->isActive();
        };
        if (!QTest::qWaitFor(isReady, 10'000))
            qFatal("the window did not open");
        return answer;
    }

    FakeInstalledApplications m_installed;
    std::unique_ptr<ApplicationChooserWindow> m_chooser;
};

QTEST_MAIN(ApplicationChooserWindowTest)
#include "ApplicationChooserWindowTest.moc"

// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/QuitQuestion/QuitQuestionWindow.h"

#include "tests/Views/AccessibleView.h"

#include <QGuiApplication>
#include <QTest>
#include <QWindow>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class QuitQuestionWindowTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_question = std::make_unique<QuitQuestionWindow>(); }
    void cleanup()
    {
        m_question.reset();
        QVERIFY(!window());
    }

    void itSaysWhatQuittingMeans()
    {
        const auto answer = ask();
        QCOMPARE(window()->title(), u"Mossbank is recording"_s);
        const AccessibleView view(*window());
        QCOMPARE(
            view.names(QAccessible::StaticText),
            (QStringList{u"Mossbank is recording"_s,
                         u"Quit, and nothing more is saved until Mossbank is opened again. "
                         "Closing the window instead keeps it recording from the menu bar."_s}));
        QCOMPARE(view.names(QAccessible::Button),
                 (QStringList{u"Quit Mossbank"_s, u"Keep Recording"_s}));
        QVERIFY(!answer.isFinished());
    }

    void allOfItCanBeRead()
    {
        const auto answer = ask();
        const AccessibleView view(*window());
        const QRect frame(window()->position(), window()->size());
        const auto place = [&](QAccessible::Role role, int number) {
            return view.find(role, view.names(role).at(number))->rect();
        };
        const QRect explanation = place(QAccessible::StaticText, 1);
        for (int button = 0; button < 2; ++button) {
            const QRect rect = place(QAccessible::Button, button);
            QVERIFY2(frame.contains(rect), "a button is cut off");
            QVERIFY2(rect.top() > explanation.bottom(), "a button lies over the text");
        }
    }

    void theUserAnswers_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<bool>("isQuitMeant");
        QTest::newRow("Keep Recording") << u"Keep Recording"_s << false;
        QTest::newRow("Quit Mossbank") << u"Quit Mossbank"_s << true;
        QTest::newRow("Return") << u"return"_s << false;
        QTest::newRow("Tab, Return") << u"tab return"_s << true;
        QTest::newRow("Escape") << u"escape"_s << false;
        QTest::newRow("the keys for quitting") << u"ctrl q"_s << true;
        QTest::newRow("the window is closed") << u"close"_s << false;
        QTest::newRow("the program goes") << u"gone"_s << false;
    }
    void theUserAnswers()
    {
        QFETCH(QString, way);
        QFETCH(bool, isQuitMeant);
        const auto answer = ask();
        if (way == u"return") {
            QTest::keyClick(window(), Qt::Key_Return);
        } else if (way == u"tab return") {
            QTest::keyClick(window(), Qt::Key_Tab);
            QTest::keyClick(window(), Qt::Key_Return);
        } else if (way == u"escape") {
            QTest::keyClick(window(), Qt::Key_Escape);
        } else if (way == u"ctrl q") {
            QTest::keyClick(window(), Qt::Key_Q, Qt::ControlModifier);
        } else if (way == u"close") {
            window()->close();
        } else if (way == u"gone") {
            m_question.reset();
        } else {
            QVERIFY(AccessibleView(*window()).press(way));
        }
        QVERIFY(answer.isFinished());
        QCOMPARE(answer.result(), isQuitMeant);
        QTRY_VERIFY(!window());
    }

    void itHasTheSignOfAWarning()
    {
        const auto answer = ask();
        const auto* const sign = window()->findChild<QObject*>(u"sign"_s);
        QVERIFY(sign);
        QVERIFY(sign->property("visible").toBool());
        QVERIFY(sign->property("width").toReal() >= 20);
    }

    void itIsAskedOnceAtATimeAndAgain()
    {
        const auto answer = ask();
        const auto second = m_question->isQuitMeant();
        QVERIFY(second.isFinished());
        QVERIFY(!second.result());
        QCOMPARE(QGuiApplication::topLevelWindows().size(), 1);
        QVERIFY(!answer.isFinished());
        QTest::keyClick(window(), Qt::Key_Escape);
        QTRY_VERIFY(!window());
        const auto third = ask();
        QTest::keyClick(window(), Qt::Key_Q, Qt::ControlModifier);
        QVERIFY(third.result());
    }

private:
    static QWindow* window() { return QGuiApplication::topLevelWindows().value(0); }

    /// Opened, and ready to be pressed.
    QFuture<bool> ask()
    {
        auto answer = m_question->isQuitMeant();
        if (answer.isFinished())
            answer.waitForFinished(); // throws why
        const auto isReady = [] {
            return window() && window()->isVisible() && window()->isActive();
        };
        if (!QTest::qWaitFor(isReady, 10'000))
            qFatal("the window did not open");
        return answer;
    }

    std::unique_ptr<QuitQuestionWindow> m_question;
};

QTEST_MAIN(QuitQuestionWindowTest)
#include "QuitQuestionWindowTest.moc"

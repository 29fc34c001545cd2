// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Tray/TrayPopup.h"

#include <QAction>
#include <QTest>

#include <memory>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

const TrayState kRests = {.status = u"Recording is off"_s};
const TrayState kRecords = {.isRecording = true, .status = u"Waiting for your next screen"_s};
const TrayState kPauses = {
    .isPaused = true, .status = u"Paused until 11:30"_s, .errorMessage = u"a & b_c && d"_s};

QAction* action(const QMenu& menu, const QString& text)
{
    for (QAction* const one : menu.actions()) {
        if (one->isVisible() && one->text() == text)
            return one;
    }
    return nullptr;
}

QStringList texts(const QMenu& menu)
{
    QStringList all;
    for (const QAction* const one : menu.actions()) {
        if (one->isVisible())
            all.append(one->isSeparator() ? u"-"_s : one->text());
    }
    return all;
}

} // namespace

class TrayPopupTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<TrayPopup> m_popup;

    QMenu& menu() { return m_popup->menu(); }
    void show(const TrayState& state) { m_popup->show(TrayMenu::entries(state)); }
    bool open()
    {
        menu().popup({10, 10});
        return QTest::qWaitForWindowExposed(&menu());
    }

private Q_SLOTS:
    void init()
    {
        m_popup = std::make_unique<TrayPopup>();
        show(kRests);
    }
    void cleanup() { m_popup.reset(); }

    void itShowsWhatItIsTold()
    {
        QCOMPARE(texts(menu()), (QStringList{u"Recording is off"_s, u"Start Recording"_s,
                                             u"Capture Now"_s, u"Exclude the App in Front"_s,
                                             u"Open Mossbank"_s, u"-"_s, u"Quit Mossbank"_s}));
        QVERIFY(!menu().actions().first()->isEnabled());
        QVERIFY(!action(menu(), u"Capture Now"_s)->isEnabled());
        show(kRecords);
        QVERIFY(action(menu(), u"Capture Now"_s)->isEnabled());
        QCOMPARE(texts(*action(menu(), u"Pause For"_s)->menu()),
                 (QStringList{u"15 minutes"_s, u"1 hour"_s, u"until morning"_s}));
    }

    void itFollowsWhileItIsOpen()
    {
        QVERIFY(open());
        const QList<QAction*> before = menu().actions();
        const QAction* const quits = action(menu(), u"Quit Mossbank"_s);
        const int height = menu().height();
        show(kPauses);
        QVERIFY2(menu().isVisible(), "what is open stays open");
        QCOMPARE(menu().actions(), before);
        QCOMPARE(action(menu(), u"Quit Mossbank"_s), quits);
        QVERIFY(action(menu(), u"Resume Recording"_s));
        QVERIFY(action(menu(), u"Cancel Timed Pause"_s));
        QVERIFY2(menu().height() > height, "it has room for what came");
        show(kRests);
        QCOMPARE(menu().height(), height);
        QVERIFY(menu().isVisible());
    }

    void aMenuThatHasGoneDoesNotStayOpen()
    {
        show(kRecords);
        QVERIFY(open());
        QAction* const pauses = action(menu(), u"Pause For"_s);
        menu().setActiveAction(pauses);
        QTest::keyClick(&menu(), Qt::Key_Right);
        QTRY_VERIFY(pauses->menu()->isVisible());
        show(kRests);
        QVERIFY(!pauses->menu()->isVisible());
        QVERIFY(menu().isVisible());
    }

    void whatIsChosenIsTold()
    {
        QList<TrayChoice> chosen;
        connect(m_popup.get(), &TrayPopup::chosen, this,
                [&](const TrayChoice& choice) { chosen.append(choice); });
        show(kRecords);
        action(menu(), u"Pause Recording"_s)->trigger();
        action(*action(menu(), u"Pause For"_s)->menu(), u"until morning"_s)->trigger();
        action(menu(), u"Quit Mossbank"_s)->trigger();
        const QList<TrayChoice> expected = {
            {.command = TrayCommand::ToggleRecording},
            {.command = TrayCommand::PauseFor, .length = PauseLength::UntilMorning},
            {.command = TrayCommand::Quit}};
        QVERIFY(chosen == expected);
    }

    void whatCannotBeChosenCanBeRead()
    {
        for (const QColor& colour : {QColor(0xf6, 0xf5, 0xf1), QColor(0x26, 0x2a, 0x25)}) {
            QGuiApplication::setPalette(QPalette(colour, colour));
            QVERIFY(open());
            const QPalette palette = menu().palette();
            menu().hide();
            const auto lightness = [&](QPalette::ColorGroup group, QPalette::ColorRole role) {
                return palette.color(group, role).lightness();
            };
            const int background = lightness(QPalette::Active, QPalette::Window);
            constexpr int kLegible = 100;
            for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
                const int faint = std::abs(lightness(QPalette::Disabled, role) - background);
                const int clear = std::abs(lightness(QPalette::Active, role) - background);
                QVERIFY2(faint > kLegible, qPrintable(QString::number(faint)));
                QVERIFY2(faint < clear, "it is told apart from what can be chosen");
            }
        }
        QGuiApplication::setPalette({});
    }

    void noSignInATextIsTakenForAKey()
    {
        show(kPauses);
        QCOMPARE(menu().actions().at(1)->text(), u"a && b_c &&&& d"_s);
    }
};

QTEST_MAIN(TrayPopupTest)
#include "TrayPopupTest.moc"

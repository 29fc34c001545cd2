// SPDX-License-Identifier: Apache-2.0
//
// The icon in the tray over the real model, where Qt has no tray to show it in.
#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Views/Tray/Tray.h"
#include "tests/Fakes/FakeTrayHost.h"
#include "tests/Model/RecorderRig.h"

#include <QAction>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTest>

#include <memory>

using namespace mossbank;
using namespace Qt::StringLiterals;

class TrayStateTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<AppModel> m_model;
    FakeTrayHost m_host;
    std::unique_ptr<Tray> m_tray;

    QSystemTrayIcon* icon() { return m_tray->findChild<QSystemTrayIcon*>(); }
    Recorder& recorder() { return m_model->recorder(); }

    bool shows(TraySymbol symbol)
    {
        constexpr int kSize = 64;
        return icon()->icon().pixmap(kSize).toImage().convertToFormat(
                   QImage::Format_ARGB32_Premultiplied) == TraySymbols::image(symbol, kSize);
    }

    QStringList titles()
    {
        QStringList titles;
        for (const QAction* const action : icon()->contextMenu()->actions()) {
            if (action->isVisible() && action->isEnabled() && !action->isSeparator())
                titles.append(action->text());
        }
        return titles;
    }

private Q_SLOTS:
    void init()
    {
        m_host.setThere(false);
        m_rig = std::make_unique<RecorderRig>(false);
        m_model = std::make_unique<AppModel>(m_rig->surroundings(),
                                             OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
        m_tray = std::make_unique<Tray>(*m_model, m_rig->preferences, m_host);
    }
    void cleanup()
    {
        m_tray.reset();
        m_model.reset();
        m_rig.reset();
    }

    void itIsMadeOnceThereIsAPlaceForIt()
    {
        QVERIFY(!icon());
        m_host.setThere(true);
        const QSystemTrayIcon* const made = icon();
        QVERIFY(made && made->isVisible());
        m_host.setThere(false);
        m_host.setThere(true);
        QCOMPARE(icon(), made);
        QCOMPARE(m_tray->findChildren<QSystemTrayIcon*>().size(), 1);
        // Where there is one from the start.
        const Tray another(*m_model, m_rig->preferences, m_host);
        QVERIFY(another.findChild<QSystemTrayIcon*>());
    }

    void itsSymbolFollowsTheRecorder()
    {
        m_host.setThere(true);
        QVERIFY(shows(TraySymbol::Resting));
        m_rig->secureInput.isActiveNow = true;
        recorder().toggleRecording();
        QTRY_COMPARE(recorder().status(),
                     u"Skipped while a password field or other secure input is active"_s);
        QVERIFY(shows(TraySymbol::SecureInput));
        // The next line that it says takes the lock away.
        recorder().setStatus(u"Waiting for your next screen"_s);
        QVERIFY(shows(TraySymbol::Recording));
        // A stop that changes nothing of what it says.
        recorder().setStatus(u"Recording is off"_s);
        QVERIFY(shows(TraySymbol::Recording));
        recorder().toggleRecording();
        QVERIFY(shows(TraySymbol::Resting));
    }

    void itsToolTipAndItsMenuFollowToo()
    {
        m_host.setThere(true);
        const QStringList always = {u"Exclude the App in Front"_s, u"Open Mossbank"_s,
                                    u"Quit Mossbank"_s};
        QCOMPARE(icon()->toolTip(), u"Mossbank\nRecording is off"_s);
        QCOMPARE(titles(), QStringList{u"Start Recording"_s} + always);
        recorder().toggleRecording();
        QCOMPARE(titles(),
                 (QStringList{u"Pause Recording"_s, u"Pause For"_s, u"Capture Now"_s} + always));
        m_model->pauses().pause(PauseLength::OneHour);
        QCOMPARE(titles(), (QStringList{u"Resume Recording"_s, u"Cancel Timed Pause"_s} + always));
        QVERIFY2(icon()->toolTip().startsWith(u"Mossbank\nPaused until "_s),
                 qPrintable(icon()->toolTip()));
        recorder().setErrorMessage(u"Capture stopped: the disk is full"_s);
        QCOMPARE(icon()->contextMenu()->actions().at(1)->text(),
                 u"Capture stopped: the disk is full"_s);
        recorder().setErrorMessage(std::nullopt);
        QVERIFY(!icon()->contextMenu()->actions().at(1)->isVisible());
    }

    void aPauseThatEndsByItselfIsFollowed()
    {
        m_host.setThere(true);
        recorder().toggleRecording();
        m_model->pauses().pause(PauseLength::OneHour);
        QVERIFY(titles().contains(u"Resume Recording"_s));
        // Whoever ends it alone says nothing else.
        const_cast<TimedPause&>(m_model->timedPause()).cancelPause();
        QTRY_VERIFY(titles().contains(u"Start Recording"_s));
        QVERIFY(!titles().contains(u"Cancel Timed Pause"_s));
    }
};

QTEST_MAIN(TrayStateTest)
#include "TrayStateTest.moc"

// SPDX-License-Identifier: Apache-2.0
//
// What the user chooses among the installed applications is what the screen then tells of its
// windows: from the desktop's own files, through the window of the choice and the stored list, to a
// capture pass that skips.
#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Platform/Linux/DesktopFileApplications.h"
#include "Mossbank/Platform/Linux/X11FrontApplication.h"
#include "Mossbank/Views/ApplicationChooser/ApplicationChooserWindow.h"
#include "tests/Desktop/DesktopTest.h"
#include "tests/Fakes/FakeAddressSource.h"
#include "tests/Fakes/FakeClock.h"
#include "tests/Fakes/FakeDesktop.h"
#include "tests/Fakes/FakeGuards.h"
#include "tests/Fakes/FakeLoginService.h"
#include "tests/Fakes/FakeRelauncher.h"
#include "tests/Fakes/FakeSessionEvents.h"
#include "tests/Fakes/FakeTextRecognizer.h"
#include "tests/Fakes/FakeUpdates.h"
#include "tests/Views/AccessibleView.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class ChosenExclusionTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void whatIsChosenIsSkipped()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        WindowProgram gamma;
        QVERIFY(gamma.open(
            {.frame = {300, 200, 600, 400}, .colour = kBlue, .windowClass = u"Gamma"_s}));
        const QTemporaryDir folder;
        const QString choices = folder.filePath(u"choices.ini"_s);
        const auto catalog = std::make_shared<ApplicationCatalog>();
        const auto screen = makeScreen();
        X11FrontApplication front(catalog, ownProgram());
        QTRY_COMPARE(front.current().value_or(Application()).bundleID, kGamma);

        const DesktopFileApplications installed;
        ApplicationChooserWindow chooser(installed);
        FakeClock clock;
        FakeScreenState state;
        FakeSecureInput secureInput;
        FakeSessionEvents sessionEvents;
        FakeAddressSource addresses;
        FakeAppearance appearance;
        FakeLoginService loginService;
        FakeQuitQuestion quitQuestion;
        FakeRelauncher relauncher;
        FakeUpdates updates;
        FakeTextRecognizer recognizer{{u"what is there"_s}};
        Preferences preferences(choices);
        preferences.setInterval(1);
        preferences.setSkipsUnchangedScreens(false);
        AppModel model({.clock = clock,
                        .calendar = [] { return Calendar(QTimeZone::utc(), QLocale::c()); },
                        .screen = *screen,
                        .frontApplication = front,
                        .screenState = state,
                        .secureInput = secureInput,
                        .sessionEvents = sessionEvents,
                        .addresses = addresses,
                        .applicationChooser = chooser,
                        .appearance = appearance,
                        .loginService = loginService,
                        .quitQuestion = quitQuestion,
                        .relauncher = relauncher,
                        .updates = updates,
                        .recognizer = recognizer,
                        .preferences = preferences},
                       OpenedLibrary::at(folder.filePath(u"Library"_s), nullptr));
        Recorder& recorder = model.recorder();
        const auto becomes = [&](const QString& status) {
            return QTest::qWaitFor(
                [&] {
                    clock.advance(1);
                    return recorder.status().startsWith(status);
                },
                kPatience);
        };
        const auto saved = [&] {
            return model.store()->fetch({.limit = 1000}).result().size();
        };
        recorder.toggleRecording();
        QVERIFY2(becomes(u"Saved at "_s), qPrintable(recorder.status()));

        model.exclusions().addExcludedApp();
        choose(u"Gamma of the tests"_s);
        QTRY_VERIFY(Preferences(choices).excludedBundles().contains(kGamma));
        QCOMPARE(front.current().value_or(Application()).bundleID, kGamma);
        QVERIFY2(becomes(u"Skipped an excluded app"_s), qPrintable(recorder.status()));
        const auto before = saved();
        QVERIFY(before > 0);
        for (int pass = 0; pass < 5; ++pass) {
            clock.advance(1);
            QTest::qWait(100);
            QCOMPARE(recorder.status(), u"Skipped an excluded app"_s);
        }
        QCOMPARE(saved(), before);
        recorder.stop();
        QThreadPool::globalInstance()->waitForDone();
    }

private:
    static constexpr int kPatience = 20'000;

    static QWindow* window() { return QGuiApplication::topLevelWindows().value(0); }

    /// Chooses it by its name, among all that is installed here. Fails the case when it is not
    /// there.
    static void choose(const QString& name)
    {
        QVERIFY(QTest::qWaitFor([] { return window() && window()->isActive(); }, kPatience));
        const AccessibleView view(*window());
        for (const QChar letter : name)
            QTest::keyClick(window(), letter.toLatin1());
        QTRY_COMPARE(view.names(QAccessible::ListItem), QStringList{name});
        QTest::keyClick(window(), Qt::Key_Return);
        QTRY_VERIFY(!window());
    }
};

QTEST_MAIN(ChosenExclusionTest)
#include "ChosenExclusionTest.moc"

// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11FrontApplication.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "tests/Desktop/DesktopTest.h"

#include <QElapsedTimer>

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// Servers that lack something, and servers that go away.
class ScreenServersTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void withoutADisplayThereIsAReason()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qunsetenv("DISPLAY");
        QCOMPARE(failureOf([] { makeScreen(); }), u"There is no X display: DISPLAY is not set."_s);
        const Platform platform = makePlatform(kOwn);
        QCOMPARE(platform.screen->availability().reason,
                 u"There is no X display: DISPLAY is not set."_s);
        QCOMPARE(platform.frontApplication->availability().reason,
                 platform.screen->availability().reason);
        QVERIFY(!platform.screen->isAllowed());
        qputenv("DISPLAY", ":32123");
        QCOMPARE(failureOf([] { makeScreen(); }), u"The X display :32123 cannot be opened."_s);
        qputenv("DISPLAY", display);
    }

    void withADisplayTheFactoryChoosesIt()
    {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const Platform platform = makePlatform(kOwn);
        QVERIFY(platform.screen->availability().isAvailable);
        QVERIFY(platform.screen->isAllowed());
        QVERIFY(platform.frontApplication->availability().isAvailable);
        QCOMPARE(platform.screen->content().result().displays.size(), 1);
        QVERIFY(!platform.screenState->availability().reason.isEmpty());
        QVERIFY(!platform.secureInput->availability().reason.isEmpty());
        QVERIFY(!platform.addresses->availability().reason.isEmpty());
        QVERIFY(platform.recognizer);
    }

    void aServerWithinWaylandIsNotTakenForTheScreen()
    {
        VirtualDesktop desktop({.hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto outcome = desktop.run(
            u"xrandr"_s,
            {u"--setmonitor"_s, u"XWAYLAND0"_s, u"1920/500x1080/280+0+0"_s, u"screen"_s},
            u"x11-xserver-utils"_s);
        QVERIFY2(outcome.isSuccess, qPrintable(outcome.text));
        const Platform platform = makePlatform(kOwn);
        QVERIFY(!platform.screen->isAllowed());
        QVERIFY(platform.screen->availability().reason.contains(u"Wayland"_s));
        QVERIFY(!platform.frontApplication->availability().isAvailable);
    }

    void aServerThatLacksSomethingWorks_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("hasWindowManager");
        QTest::newRow("nothing") << QStringList() << true;
        QTest::newRow("no window manager") << QStringList() << false;
        QTest::newRow("no MIT-SHM") << QStringList{u"-extension"_s, u"MIT-SHM"_s} << true;
        QTest::newRow("no X-Resource") << QStringList{u"-extension"_s, u"X-Resource"_s} << true;
        QTest::newRow("no RANDR") << QStringList{u"-extension"_s, u"RANDR"_s} << true;
        QTest::newRow("no SHAPE") << QStringList{u"-extension"_s, u"SHAPE"_s} << true;
        QTest::newRow("no X-Resource, no window manager")
            << QStringList{u"-extension"_s, u"X-Resource"_s} << false;
    }

    void aServerThatLacksSomethingWorks()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, hasWindowManager);
        const VirtualDesktop desktop(
            {.arguments = arguments, .hasWindowManager = hasWindowManager});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram alpha;
        WindowProgram beta;
        PaintedWindows own;
        QVERIFY(own.open({.frame = {100, 600, 500, 300},
                          .colour = kBlue,
                          .windowClass = u"Own"_s,
                          .tellsProcess = true}));
        QVERIFY(alpha.open(
            {.frame = {300, 700, 200, 100}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        QVERIFY(
            beta.open({.frame = {900, 200, 300, 200}, .colour = kRed, .windowClass = u"Beta"_s}));
        QVERIFY(beta.open(
            {.frame = {1500, 250, 120, 90}, .colour = kYellow, .overridesRedirect = true}));
        QTRY_COMPARE(pixelsOf(pictureOf(*screen, {kAlpha}), kGreen), 200 * 100);
        const QImage picture = pictureOf(*screen, {kAlpha});
        QCOMPARE(picture.size(), QSize(1920, 1080));
        QCOMPARE(pixelsOf(picture, kRed), 0);
        QCOMPARE(pixelsOf(picture, kYellow), 0);
        QCOMPARE(pixelsOf(picture, kBlue), 0);
        QCOMPARE(pixelsOf(pictureOf(*screen, {kAlpha, kBeta}), kRed), 300 * 200);
        QCOMPARE(pixelsOf(pictureOf(*screen, {kAlpha, kBeta}), kYellow), 120 * 90);
    }

    void aPopupOfNobodyKnownOverAnExcludedWindowIsInNoPicture()
    {
        const VirtualDesktop desktop({.arguments = {u"-extension"_s, u"X-Resource"_s}});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram beta;
        WindowProgram nobody;
        QVERIFY(
            beta.open({.frame = {200, 200, 300, 200}, .colour = kRed, .windowClass = u"Beta"_s}));
        QVERIFY(nobody.open(
            {.frame = {450, 300, 300, 60}, .colour = kYellow, .overridesRedirect = true}));
        QVERIFY(nobody.open(
            {.frame = {740, 300, 600, 60}, .colour = kYellow, .overridesRedirect = true}));
        QVERIFY(nobody.open(
            {.frame = {200, 800, 100, 60}, .colour = kGreen, .overridesRedirect = true}));
        const QImage picture = pictureOf(*screen, {kAlpha});
        QCOMPARE(pixelsOf(picture, kRed), 0);
        QCOMPARE(pixelsOf(picture, kYellow), 0);
        // What nobody owns and is nowhere near is there.
        QCOMPARE(pixelsOf(picture, kGreen), 100 * 60);
    }

    void aServerThatIsKilledIsAClearFailure()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const QString name = qEnvironmentVariable("DISPLAY");
        const auto screen = makeScreen();
        X11FrontApplication front(std::make_shared<ApplicationCatalog>(), ownProgram());
        const QImage before = pictureOf(*screen, {});
        desktop.killServer();
        QCOMPARE(failureOf([&] { screen->content().result(); }),
                 u"The X display %1 cannot be opened."_s.arg(name));
        QCOMPARE(failureOf([&] {
                     screen->picture({1, {}, {}}).result();
                 }),
                 u"The X display %1 cannot be opened."_s.arg(name));
        QVERIFY(!screen->isAllowed());
        QCOMPARE(screen->availability().reason, u"The X display %1 cannot be opened."_s.arg(name));
        QCOMPARE(failureOf([&] { (void)front.current(); }),
                 u"The connection to the X display %1 is lost."_s.arg(name));
        QCOMPARE(failureOf([&] { (void)front.current(); }),
                 u"The X display %1 cannot be opened."_s.arg(name));
        QVERIFY(!front.availability().isAvailable);
        QCoreApplication::processEvents();
        QCOMPARE(before.size(), QSize(1920, 1080));
        QVERIFY(before.copy().pixel(10, 10));
    }

    void aServerThatStandsStillHoldsNobodyUp()
    {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto process = static_cast<pid_t>(desktop.serverProcess());
        auto screen = makeScreen();
        X11FrontApplication front(std::make_shared<ApplicationCatalog>(), ownProgram());
        ::kill(process, SIGSTOP);
        QElapsedTimer watch;
        watch.start();
        QFuture<ScreenContent> content = screen->content();
        const bool answersAtOnce = watch.elapsed() < 100;
        const bool hasFront = front.current().has_value();
        screen.reset();
        const qint64 ended = watch.elapsed();
        ::kill(process, SIGCONT);
        QVERIFY(answersAtOnce);
        QVERIFY(!hasFront);
        QVERIFY2(ended < 5000, qPrintable(QString::number(ended)));
        QVERIFY(!failureOf([&] { content.result(); }).isEmpty());
    }

    void openingAConnectionToAServerThatStandsStillEnds()
    {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const QString name = qEnvironmentVariable("DISPLAY");
        const auto process = static_cast<pid_t>(desktop.serverProcess());
        ::kill(process, SIGSTOP);
        QElapsedTimer watch;
        watch.start();
        const QString impatient = failureOf([] { X11Connection(200); });
        const qint64 untilImpatient = watch.restart();
        std::stop_source ending;
        const std::jthread stopper([&] { ending.request_stop(); });
        const QString ended =
            failureOf([&] { X11Connection(X11Connection::kPatience, ending.get_token()); });
        const qint64 untilEnded = watch.elapsed();
        ::kill(process, SIGCONT);
        const QString silent = u"The X display %1 does not answer."_s.arg(name);
        QCOMPARE(impatient, silent);
        QVERIFY(untilImpatient >= 200);
        QVERIFY2(untilImpatient < 5000, qPrintable(QString::number(untilImpatient)));
        QCOMPARE(ended, silent);
        QVERIFY2(untilEnded < 5000, qPrintable(QString::number(untilEnded)));
        // What is left of them does no harm when the server goes on.
        QCOMPARE(failureOf([] { X11Connection(); }), QString());
    }

    void aServerThatStandsStillWhenItIsLookedForAgainHoldsNobodyUp()
    {
        VirtualDesktop desktop({.hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        auto screen = makeScreen();
        X11FrontApplication front(std::make_shared<ApplicationCatalog>(), ownProgram());
        desktop.killServer();
        QVERIFY(!failureOf([&] { (void)front.current(); }).isEmpty());
        QProcess server;
        QVERIFY(startAnother(server));
        ::kill(static_cast<pid_t>(server.processId()), SIGSTOP);
        QElapsedTimer watch;
        watch.start();
        QFuture<ScreenContent> content = screen->content();
        const QString frontFailure = failureOf([&] { (void)front.current(); });
        const qint64 untilFront = watch.restart();
        screen.reset();
        const qint64 untilEnded = watch.elapsed();
        ::kill(static_cast<pid_t>(server.processId()), SIGCONT);
        QCOMPARE(frontFailure,
                 u"The X display %1 does not answer."_s.arg(qEnvironmentVariable("DISPLAY")));
        QVERIFY2(untilFront < 5000, qPrintable(QString::number(untilFront)));
        QVERIFY2(untilEnded < 5000, qPrintable(QString::number(untilEnded)));
        QVERIFY(!failureOf([&] { content.result(); }).isEmpty());
        server.terminate();
        QVERIFY(server.waitForFinished(5000));
    }

    void aConnectionThatIsEndedIsMadeAgain()
    {
        VirtualDesktop desktop({.hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        QVERIFY(!pictureOf(*screen, {}).isNull());
        PaintedWindows killer;
        killer.endEveryOtherClient();
        QVERIFY(screen->isAllowed());
        QCOMPARE(screen->content().result().displays.size(), 1);
        QVERIFY(!pictureOf(*screen, {}).isNull());
    }

    void aServerThatIsStartedAgainIsFoundAgain()
    {
        VirtualDesktop desktop({.hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        X11FrontApplication front(std::make_shared<ApplicationCatalog>(), ownProgram());
        desktop.killServer();
        QVERIFY(!failureOf([&] { (void)front.current(); }).isEmpty());
        QVERIFY(!front.availability().isAvailable);
        QProcess server;
        QVERIFY(startAnother(server));
        QVERIFY(!front.current());
        QVERIFY(front.availability().isAvailable);
        QCOMPARE(pictureOf(*screen, {}).size(), QSize(640, 480));
        server.terminate();
        QVERIFY(server.waitForFinished(5000));
    }

    void aScreenOfThirtyBitsIsCoveredInTheSameGrey()
    {
        const VirtualDesktop desktop(
            {.arguments = {u"-screen"_s, u"0"_s, u"800x600x30"_s}, .hasWindowManager = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto screen = makeScreen();
        WindowProgram beta;
        QVERIFY(beta.open({.frame = {200, 200, 300, 200},
                           .colour = kRed,
                           .windowClass = u"Beta"_s,
                           .overridesRedirect = true}));
        QCOMPARE(pixelsOf(pictureOf(*screen, {}), qRgb(0x30, 0x30, 0x30)), 364 * 264);
    }

private:
    /// A smaller one, where the one that DISPLAY names was.
    static bool startAnother(QProcess& server)
    {
        server.start(u"Xvfb"_s, {qEnvironmentVariable("DISPLAY"), u"-displayfd"_s, u"1"_s,
                                 u"-screen"_s, u"0"_s, u"640x480x24"_s, u"-nolisten"_s, u"tcp"_s});
        return server.waitForReadyRead(10'000);
    }
};

QTEST_GUILESS_MAIN(ScreenServersTest)
#include "ScreenServersTest.moc"

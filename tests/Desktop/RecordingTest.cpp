// SPDX-License-Identifier: Apache-2.0
//
// The real program on a real screen: what is on it is found, and what must not be recorded is in
// no picture and in no row.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

/// JPEG changes colours a little, and more at edges; nothing else there is nearly as red.
int reddish(const QImage& image, const QRect& part)
{
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qRed(pixel) > 150 && qGreen(pixel) < 100 && qBlue(pixel) < 100)
                ++count;
        }
    }
    return count;
}

/// A terminal that shows a text in letters large enough for anybody.
QStringList terminalWith(const QString& text, const QString& className, const QString& geometry,
                         const QString& background = u"white"_s)
{
    return {u"-name"_s,     className,
            u"-class"_s,    className,
            u"-bg"_s,       background,
            u"-fg"_s,       u"black"_s,
            u"-fa"_s,       u"DejaVu Sans Mono"_s,
            u"-fs"_s,       u"18"_s,
            u"-geometry"_s, geometry,
            u"-T"_s,        text,
            u"-e"_s,        u"sh"_s,
            u"-c"_s,        u"printf '\\n  %s\\n' '%1'; exec sleep 1000"_s.arg(text)};
}

} // namespace

class RecordingTest : public QObject {
    Q_OBJECT

    static bool openTerminal(VirtualDesktop& desktop, const QStringList& arguments)
    {
        return desktop.start(u"xterm"_s, arguments, u"xterm"_s);
    }

private Q_SLOTS:
    void initTestCase() { useTestApplications(); }

    void aWordInATerminalIsFound()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        QVERIFY2(openTerminal(desktop, terminalWith(u"the kingfisher waits"_s, u"XTerm"_s,
                                                    u"60x10+100+100"_s)),
                 qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.choose({{u"interval"_s, u"1"_s}});
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Saved at "_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QVERIFY2(mossbank.terminal().endsWith(u"Recording is off\n"_s),
                 qPrintable(mossbank.terminal()));

        const auto found = mossbank.find({u"kingfisher"_s, u"waits"_s});
        QCOMPARE(found.status, 0);
        QVERIFY2(found.text.contains(u"the kingfisher waits"_s), qPrintable(found.text));
        QVERIFY2(found.text.contains(u"XTerm"_s), qPrintable(found.text));
        const auto nothing = mossbank.find({u"cormorant"_s});
        QCOMPARE(nothing.status, 0);
        QVERIFY2(!nothing.text.contains(u"kingfisher"_s), qPrintable(nothing.text));

        const QList<Memory> rows = mossbank.rows();
        QCOMPARE(mossbank.pictureFiles().size(), rows.size());
        QCOMPARE(QImage(mossbank.pictureFiles().first()).size(), QSize(1920, 1080));
        QVERIFY(QDir(mossbank.library() + u"/Pending"_s).isEmpty());
    }

    void withoutASessionBusTheFirstLookCounts()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        QVERIFY2(openTerminal(desktop,
                              terminalWith(u"the heron waits"_s, u"XTerm"_s, u"60x10+100+100"_s)),
                 qPrintable(desktop.problem()));
        RunningMossbank mossbank;
        mossbank.setSessionBus(u"unix:path=/nowhere/at/all"_s);
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Saved at "_s), qPrintable(mossbank.terminal()));
        const QString unknown = u"So Mossbank may not notice that a password is typed"_s;
        QVERIFY2(mossbank.waitFor(unknown), qPrintable(mossbank.terminal()));
        // It would be said again by then.
        QTest::qWait(12'000);
        QCOMPARE(mossbank.terminal().count(unknown), 1);
        QVERIFY2(!mossbank.terminal().contains(u"Skipped while a password field"_s),
                 qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
    }

    void aVisibleExcludedApplicationIsNeverRecorded_data()
    {
        QTest::addColumn<bool>("isInFront");
        QTest::newRow("in front") << true;
        QTest::newRow("beside") << false;
    }
    void aVisibleExcludedApplicationIsNeverRecorded()
    {
        QFETCH(bool, isInFront);
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const auto secret =
            terminalWith(u"cormorant"_s, u"Gamma"_s, u"30x6+1000+600"_s, u"#e01021"_s);
        const auto ordinary = terminalWith(u"heron"_s, u"Alpha"_s, u"30x6+50+50"_s);
        QVERIFY(openTerminal(desktop, isInFront ? ordinary : secret));
        QTest::qWait(1500);
        QVERIFY(openTerminal(desktop, isInFront ? secret : ordinary));
        QTest::qWait(1500);

        RunningMossbank mossbank;
        mossbank.choose({{u"interval"_s, u"1"_s}, {u"excludedBundles"_s, u"org.example.Gamma"_s}});
        QVERIFY(mossbank.start());
        const QString line =
            isInFront ? u"Skipped an excluded app"_s : u"Skipped: an excluded app is visible"_s;
        QVERIFY2(mossbank.waitFor(line), qPrintable(mossbank.terminal()));
        QTest::qWait(2500);
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QCOMPARE(mossbank.rows().size(), 0);
        QCOMPARE(mossbank.pictureFiles().size(), 0);
    }

    // Windows of an excluded application open and close as fast as they can while another is
    // recorded at every chance. Some pass meets one between its look at the windows and the
    // picture; whatever is saved must not show it.
    void anExcludedWindowThatComesAndGoesIsInNoPicture()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        QVERIFY(openTerminal(desktop, terminalWith(u"heron"_s, u"Alpha"_s, u"40x8+50+50"_s)));
        QTest::qWait(1500);
        RunningMossbank mossbank;
        mossbank.choose({{u"interval"_s, u"1"_s},
                         {u"skipsUnchangedScreens"_s, u"false"_s},
                         {u"excludedBundles"_s, u"org.example.Gamma"_s}});
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Saved at "_s), qPrintable(mossbank.terminal()));

        const QRect place(800, 300, 600, 400);
        WindowProgram secret;
        QElapsedTimer timer;
        timer.start();
        int opened = 0;
        const auto isMet = [&] {
            return mossbank.terminal().contains(u"Skipped: an excluded app is visible"_s);
        };
        while (!timer.hasExpired(15'000) || (!isMet() && !timer.hasExpired(40'000))) {
            // It does not take the focus, so that the terminal stays in front.
            const quint32 window = secret.open({.frame = place,
                                                .colour = kRed,
                                                .windowClass = u"Gamma"_s,
                                                .overridesRedirect = true});
            QVERIFY(window != 0);
            // Gone at once, or there for as long as a look at the windows takes.
            QTest::qWait(opened % 10);
            QVERIFY(secret.close(window));
            QTest::qWait(5);
            ++opened;
        }
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QVERIFY2(isMet(), qPrintable(mossbank.terminal()));
        QVERIFY2(opened > 100, qPrintable(QString::number(opened)));
        const QStringList pictures = mossbank.pictureFiles();
        QVERIFY2(pictures.size() >= 3, qPrintable(mossbank.terminal()));
        for (const QString& picture : pictures)
            QCOMPARE(reddish(QImage(picture), place), 0);
        const QList<Memory> rows = mossbank.rows();
        QVERIFY(std::ranges::none_of(
            rows, [](const Memory& row) { return row.bundleID == u"org.example.Gamma"; }));
    }

    void anApplicationWithoutNameOrIdentityIsWaitedFor()
    {
        VirtualDesktop desktop(
            VirtualDesktop::Options{.arguments = {u"-extension"_s, u"X-Resource"_s}});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        WindowProgram nameless;
        QVERIFY(nameless.open({.frame = QRect(100, 100, 400, 300), .colour = kBlue}) != 0);
        RunningMossbank mossbank;
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for an active application"_s),
                 qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGINT), 0);
        QCOMPARE(mossbank.rows().size(), 0);
    }

    void aServerThatGoesAwayStopsTheRecordingWithASentence()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        QVERIFY(openTerminal(desktop, terminalWith(u"heron"_s, u"Alpha"_s, u"40x8+50+50"_s)));
        RunningMossbank mossbank;
        mossbank.choose({{u"interval"_s, u"1"_s}});
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Saved at "_s), qPrintable(mossbank.terminal()));
        desktop.killServer();
        // It says so and stays: its history can still be looked at.
        QVERIFY2(mossbank.waitFor(u"Capture stopped: The X display "_s),
                 qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QVERIFY(mossbank.rows().size() >= 1);
    }
};

QTEST_GUILESS_MAIN(RecordingTest)
#include "RecordingTest.moc"

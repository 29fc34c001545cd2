// SPDX-License-Identifier: Apache-2.0
//
// The real program on two displays, with a password manager's window somewhere.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kVisible = u"Skipped: an excluded app is visible"_s;
const QRect kOnTheRight(2200, 300, 600, 400);

/// JPEG changes colours a little.
bool isReddish(QRgb pixel)
{
    return qRed(pixel) > 150 && qGreen(pixel) < 100 && qBlue(pixel) < 100;
}

bool showsRed(const QString& file)
{
    const QImage picture(file);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isReddish(picture.pixel(x, y)))
                return true;
        }
    }
    return false;
}

} // namespace

class ExcludedWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useTestApplications(); }

    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>(VirtualDesktop::Options{.size = {3200, 1080}});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        // Neither of one size nor of one height.
        QVERIFY(run(u"xrandr"_s, u"x11-xserver-utils"_s,
                    {u"--setmonitor"_s, u"Left"_s, u"1920/500x1080/280+0+0"_s, u"screen"_s}));
        QVERIFY(run(u"xrandr"_s, u"x11-xserver-utils"_s,
                    {u"--setmonitor"_s, u"Right"_s, u"1280/330x1024/270+1920+56"_s, u"none"_s}));
        m_secret = std::make_unique<WindowProgram>();
        m_editor = std::make_unique<WindowProgram>();
        m_mossbank = std::make_unique<RunningMossbank>();
        m_mossbank->choose({{u"interval"_s, u"1"_s},
                            {u"skipsUnchangedScreens"_s, u"false"_s},
                            {u"excludedBundles"_s, u"org.example.Gamma"_s}});
    }

    void cleanup()
    {
        m_mossbank.reset();
        m_secret.reset();
        m_editor.reset();
        m_desktop.reset();
    }

    void onTheOtherDisplayWithoutTheFocusItIsNotRecorded()
    {
        QVERIFY(openSecret(kOnTheRight) != 0);
        QVERIFY(openEditor() != 0);
        nothingIsRecorded(2500);
    }

    void passwordManagersAreExcludedFromTheStart_data()
    {
        QTest::addColumn<QString>("windowClass");
        QTest::addColumn<QString>("applicationID");
        for (const char* windowClass : {"KeePassXC", "keepassxc", "Bitwarden", "1Password",
                                        "seahorse", "secrets", "kwalletmanager5"})
            QTest::newRow(windowClass) << QString::fromLatin1(windowClass) << QString();
        QTest::newRow("by what it says it is")
            << u"python3"_s << u"org.gnome.seahorse.Application"_s;
    }
    void passwordManagersAreExcludedFromTheStart()
    {
        QFETCH(QString, windowClass);
        QFETCH(QString, applicationID);
        m_mossbank->choose({{u"interval"_s, u"1"_s}});
        QVERIFY(m_secret->open({.frame = kOnTheRight,
                                .colour = kRed,
                                .windowClass = windowClass,
                                .applicationID = applicationID}));
        QVERIFY(openEditor() != 0);
        nothingIsRecorded(0);
    }

    void minimisedItDoesNotStandInTheWay()
    {
        const quint32 secret = openSecret(kOnTheRight);
        QVERIFY(secret != 0);
        QVERIFY(openEditor() != 0);
        QVERIFY(run(u"xdotool"_s, u"xdotool"_s, {u"windowminimize"_s, QString::number(secret)}));
        QVERIFY(m_mossbank->start());
        QVERIFY2(m_mossbank->waitFor(u"Saved at "_s, 2), qPrintable(m_mossbank->terminal()));
        // Up again, and down, in the middle of the recording.
        QVERIFY(run(u"xdotool"_s, u"xdotool"_s, {u"windowmap"_s, QString::number(secret)}));
        QVERIFY(m_mossbank->waitFor(kVisible) || m_mossbank->waitFor(u"Skipped an excluded app"_s));
        QVERIFY(run(u"xdotool"_s, u"xdotool"_s, {u"windowminimize"_s, QString::number(secret)}));
        const auto saves = m_mossbank->terminal().count(u"Saved at "_s);
        QVERIFY(m_mossbank->waitFor(u"Saved at "_s, static_cast<int>(saves) + 2));
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
        nothingOfItIsKept();
    }

    void itsTooltipIsItself_data()
    {
        QTest::addColumn<bool>("isOnTheOther");
        QTest::newRow("on the display recorded") << false;
        QTest::newRow("on the other display") << true;
    }
    void itsTooltipIsItself()
    {
        QFETCH(bool, isOnTheOther);
        const quint32 secret = openSecret(kOnTheRight);
        QVERIFY(secret != 0);
        QVERIFY(openEditor() != 0);
        QVERIFY(run(u"xdotool"_s, u"xdotool"_s, {u"windowminimize"_s, QString::number(secret)}));
        // Without a class and a name, over another's window or beside all.
        QVERIFY(m_secret->open(
                    {.frame = isOnTheOther ? QRect(2500, 200, 200, 60) : QRect(300, 300, 200, 60),
                     .colour = kRed,
                     .overridesRedirect = true}) != 0);
        nothingIsRecorded(2500);
    }

    void openingAndClosingDuringTheCaptureItIsInNoPicture()
    {
        QVERIFY(openEditor() != 0);
        QVERIFY(m_mossbank->start());
        QVERIFY(m_mossbank->waitFor(u"Saved at "_s));
        // Half of it on each display, and above the window that is recorded.
        const QRect across(1700, 300, 600, 400);
        QElapsedTimer timer;
        timer.start();
        int opened = 0;
        // Until some pass has met it.
        const auto isMet = [&] {
            return m_mossbank->terminal().contains(kVisible);
        };
        while (!timer.hasExpired(8000) || (!isMet() && !timer.hasExpired(30'000))) {
            const quint32 window = m_secret->open({.frame = across,
                                                   .colour = kRed,
                                                   .windowClass = u"Gamma"_s,
                                                   .overridesRedirect = true});
            QVERIFY(window != 0);
            QTest::qWait(opened % 20);
            QVERIFY(m_secret->close(window));
            QTest::qWait(10);
            ++opened;
        }
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
        QVERIFY2(isMet(), qPrintable(m_mossbank->terminal()));
        QVERIFY2(opened > 40, qPrintable(QString::number(opened)));
        nothingOfItIsKept();
    }

    void whatIsRecordedIsTheDisplayOfTheWindowInFront()
    {
        WindowProgram beta;
        QVERIFY(beta.open(
                    {.frame = {2100, 200, 500, 400}, .colour = kBlue, .windowClass = u"Beta"_s}) !=
                0);
        QVERIFY(m_mossbank->start());
        QVERIFY2(m_mossbank->waitFor(u"Saved at "_s), qPrintable(m_mossbank->terminal()));
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
        QCOMPARE(QImage(m_mossbank->pictureFiles().first()).size(), QSize(1280, 1024));
        QCOMPARE(m_mossbank->rows().first().bundleID, u"org.example.Beta"_s);
    }

private:
    bool run(const QString& program, const QString& package, const QStringList& arguments)
    {
        const auto outcome = m_desktop->run(program, arguments, package);
        if (!outcome.isSuccess)
            qWarning("%s", qPrintable(outcome.text));
        return outcome.isSuccess;
    }

    quint32 openSecret(const QRect& frame)
    {
        return m_secret->open(
            {.frame = frame, .colour = kRed, .windowClass = u"Gamma"_s, .title = u"Passwords"_s});
    }

    quint32 openEditor()
    {
        return m_editor->open({.frame = {100, 100, 900, 600},
                               .colour = kGreen,
                               .windowClass = u"Alpha"_s,
                               .title = u"letter.txt"_s});
    }

    /// Starts it, lets it go on for so many milliseconds after its first skip, and ends it.
    void nothingIsRecorded(int milliseconds)
    {
        QVERIFY(m_mossbank->start());
        QVERIFY2(m_mossbank->waitFor(kVisible), qPrintable(m_mossbank->terminal()));
        QTest::qWait(milliseconds);
        QCOMPARE(m_mossbank->stop(SIGINT), 0);
        QCOMPARE(m_mossbank->rows().size(), 0);
        QCOMPARE(m_mossbank->pictureFiles().size(), 0);
    }

    void nothingOfItIsKept()
    {
        const QStringList pictures = m_mossbank->pictureFiles();
        QVERIFY2(pictures.size() >= 2, qPrintable(m_mossbank->terminal()));
        for (const QString& picture : pictures)
            QVERIFY2(!showsRed(picture), qPrintable(picture));
        for (const Memory& row : m_mossbank->rows()) {
            QCOMPARE(row.bundleID, u"org.example.Alpha"_s);
            QVERIFY(!row.title.contains(u"Passwords"_s));
        }
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<WindowProgram> m_secret;
    std::unique_ptr<WindowProgram> m_editor;
    std::unique_ptr<RunningMossbank> m_mossbank;
};

QTEST_GUILESS_MAIN(ExcludedWindowTest)
#include "ExcludedWindowTest.moc"

// SPDX-License-Identifier: Apache-2.0
//
// The program and where it was started: standard files that are closed, full or gone, signals, and
// an X server that has stopped.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QFile>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 30'000;
const QString kPlatform = u"QT_QPA_PLATFORM"_s;

/// A pipe that nobody reads and that takes nothing more.
class FullPipe {
public:
    FullPipe()
    {
        if (::pipe2(m_ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
            qFatal("no pipe");
        const std::array<char, 4096> bytes = {};
        while (::write(m_ends[1], bytes.data(), bytes.size()) > 0)
            continue;
        while (::write(m_ends[1], bytes.data(), 1) > 0)
            continue;
        ::fcntl(m_ends[1], F_SETFL, 0); // whoever writes waits
    }
    ~FullPipe()
    {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
    Q_DISABLE_COPY_MOVE(FullPipe)

    int writeEnd() const { return m_ends[1]; }

private:
    std::array<int, 2> m_ends = {-1, -1};
};

bool waitForPictures(const RunningMossbank& mossbank, qsizetype count)
{
    return QTest::qWaitFor([&] { return mossbank.pictureFiles().size() >= count; }, kPatience);
}

} // namespace

class TerminalTest : public QObject {
    Q_OBJECT

    std::unique_ptr<VirtualDesktop> m_desktop;

    static void platforms()
    {
        QTest::addColumn<QString>("platform");
        QTest::newRow("with windows") << u"xcb"_s;
        QTest::newRow("without") << u"offscreen"_s;
    }

    static void recordAlways(RunningMossbank& mossbank)
    {
        mossbank.choose({{u"interval"_s, u"1"_s}, {u"skipsUnchangedScreens"_s, u"false"_s}});
    }

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        QVERIFY2(m_desktop->start(u"xterm"_s, {u"-e"_s, u"sleep"_s, u"1000"_s}, u"xterm"_s),
                 qPrintable(m_desktop->problem()));
    }
    void cleanup() { m_desktop.reset(); }

    void withoutStandardFilesItsLinesGoNowhere_data() { platforms(); }
    void withoutStandardFilesItsLinesGoNowhere()
    {
        QFETCH(QString, platform);
        RunningMossbank mossbank;
        recordAlways(mossbank);
        mossbank.setVariable(kPlatform, platform);
        mossbank.setBeginning([] {
            for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                ::close(file);
        });
        QVERIFY(mossbank.start());
        QVERIFY(waitForPictures(mossbank, 2));
        for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            const QString link = u"/proc/%1/fd/%2"_s.arg(mossbank.process()).arg(file);
            QCOMPARE(QFile::symLinkTarget(link), u"/dev/null"_s);
        }
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QCOMPARE(mossbank.rows().size(), mossbank.pictureFiles().size());
    }

    void aFullPipeDoesNotStopTheRecording_data()
    {
        QTest::addColumn<int>("file");
        QTest::addColumn<QString>("rules");
        QTest::newRow("standard output") << STDOUT_FILENO << QString();
        QTest::newRow("standard error") << STDERR_FILENO << QString();
        QTest::newRow("standard error, and Qt says a lot") << STDERR_FILENO << u"*=true"_s;
    }
    void aFullPipeDoesNotStopTheRecording()
    {
        QFETCH(int, file);
        QFETCH(QString, rules);
        const FullPipe pipe;
        RunningMossbank mossbank;
        mossbank.setVariable(u"QT_LOGGING_RULES"_s, rules);
        recordAlways(mossbank);
        mossbank.setBeginning([file, end = pipe.writeEnd()] { ::dup2(end, file); });
        QVERIFY(mossbank.start());
        QVERIFY(waitForPictures(mossbank, 3));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }

    void nobodyWhoReadsIsNoReasonToEnd()
    {
        std::array<int, 2> ends = {-1, -1};
        QCOMPARE(::pipe2(ends.data(), O_CLOEXEC), 0);
        RunningMossbank mossbank;
        recordAlways(mossbank);
        mossbank.setBeginning([end = ends[1]] { ::dup2(end, STDOUT_FILENO); });
        QVERIFY(mossbank.start());
        ::close(ends[1]);
        ::close(ends[0]);
        QVERIFY(waitForPictures(mossbank, 3));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }

    void aServerThatHasStoppedDoesNotKeepItFromEnding_data() { platforms(); }
    void aServerThatHasStoppedDoesNotKeepItFromEnding()
    {
        QFETCH(QString, platform);
        RunningMossbank mossbank;
        recordAlways(mossbank);
        mossbank.setVariable(kPlatform, platform);
        QVERIFY(mossbank.start());
        QVERIFY(waitForPictures(mossbank, 1));
        const auto server = static_cast<pid_t>(m_desktop->serverProcess());
        QCOMPARE(::kill(server, SIGSTOP), 0);
        // It waits ten seconds at most for what is under way.
        const int status = mossbank.stop(SIGINT);
        QCOMPARE(::kill(server, SIGCONT), 0);
        QCOMPARE(status, 0);
        QCOMPARE(mossbank.rows().size(), mossbank.pictureFiles().size());
    }

    void controlCharactersInNamesDoNotReachTheTerminal()
    {
        RunningMossbank mossbank;
        const QString name = u"\u001b]0;heron\u0007 \u009b2J\r\u007f\t"_s;
        mossbank.setVariable(u"XDG_DATA_HOME"_s, mossbank.home() + u'/' + name);
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QVERIFY2(
            mossbank.terminal().contains(
                u"Library: %1/\ufffd]0;heron\ufffd \ufffd2J\ufffd\ufffd\ufffd/Mossbank\n"_s.arg(
                    mossbank.home())),
            qPrintable(mossbank.terminal()));
        for (const QChar sign : mossbank.terminal())
            QVERIFY(sign == u'\n' || sign.category() != QChar::Other_Control);
    }

    void underNohupItOutlivesItsTerminalAndStillEnds_data()
    {
        QTest::addColumn<int>("ending");
        QTest::newRow("by SIGINT") << SIGINT;
        QTest::newRow("by SIGTERM") << SIGTERM;
    }
    void underNohupItOutlivesItsTerminalAndStillEnds()
    {
        QFETCH(int, ending);
        RunningMossbank mossbank;
        recordAlways(mossbank);
        mossbank.setBeginning([] { std::signal(SIGHUP, SIG_IGN); });
        QVERIFY(mossbank.start());
        QVERIFY(waitForPictures(mossbank, 1));
        QCOMPARE(::kill(static_cast<pid_t>(mossbank.process()), SIGHUP), 0);
        QVERIFY(waitForPictures(mossbank, mossbank.pictureFiles().size() + 2));
        QCOMPARE(mossbank.stop(ending), 0);
    }

    void startedInTheBackgroundOfAScriptItStillEnds_data()
    {
        QTest::addColumn<int>("ending");
        QTest::newRow("by SIGINT") << SIGINT;
        QTest::newRow("by SIGHUP") << SIGHUP;
    }
    void startedInTheBackgroundOfAScriptItStillEnds()
    {
        QFETCH(int, ending);
        RunningMossbank mossbank;
        mossbank.setBeginning([] {
            std::signal(SIGINT, SIG_IGN);
            std::signal(SIGQUIT, SIG_IGN);
        });
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Waiting for"_s), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(ending), 0);
    }
};

QTEST_GUILESS_MAIN(TerminalTest)
#include "TerminalTest.moc"

// SPDX-License-Identifier: Apache-2.0
//
// The real program with its sample library, on a machine without a screen, and pictures of it.
#include "MossbankCore/Library/HistoryStore.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QImage>
#include <QSet>
#include <QTest>

#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kReady = u"Exploring sample history"_s;
constexpr double kADay = 86'400;

/// Every file and folder below another, with what is in it.
QMap<QString, QByteArray> contentsOf(const QString& folder)
{
    QMap<QString, QByteArray> contents;
    QDirIterator entries(folder,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        QFile file(path);
        const bool isFile = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly);
        contents[path] = isFile
                             ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256)
                             : QByteArray("folder");
    }
    return contents;
}

/// The program without any screen, and with a folder for temporary files of its own.
class SampleMossbank : public RunningMossbank {
public:
    SampleMossbank()
    {
        setVariable(u"TMPDIR"_s, m_temporary.path());
        setVariable(u"DISPLAY"_s, {});
        setVariable(u"WAYLAND_DISPLAY"_s, {});
        setVariable(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    }

    QString temporary(const QString& name) const { return m_temporary.filePath(name); }
    QStringList leftInTemporary() const
    {
        return QDir(m_temporary.path())
            .entryList({u"MossbankDemo-*"_s, u"BurrowDemo-*"_s}, QDir::Dirs, QDir::Name);
    }
    /// The library of the one that runs.
    QString sample() const { return temporary(u"MossbankDemo-"_s + QString::number(process())); }
    QList<Memory> sampleRows(const QString& query = {}, std::optional<Date> day = {}) const
    {
        HistoryStore store(HistoryStore::ReadingOnly{.root = sample()});
        return store.fetch({.query = query, .day = day, .limit = 86'400, .withText = true})
            .result();
    }

    /// Ends as a user has it end, and without a trace.
    void endCleanly(int signal = SIGTERM)
    {
        QCOMPARE(stop(signal), 0);
        QVERIFY2(leftInTemporary().isEmpty(), qPrintable(leftInTemporary().join(u' ')));
    }

private:
    QTemporaryDir m_temporary;
};

Date now()
{
    return {static_cast<double>(QDateTime::currentSecsSinceEpoch())};
}

/// Whether it shows more than an area of one colour.
bool isWindow(const QImage& picture)
{
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); y += 5)
        for (int x = 0; x < picture.width(); x += 5)
            colours.insert(picture.pixel(x, y));
    return picture.width() > 600 && picture.height() > 400 && colours.size() > 10;
}

/// Waits for who measures a large library, of which more is to be read than of the few.
bool isSeeded(SampleMossbank& mossbank)
{
    for (int times = 0; times < 10; ++times) {
        if (mossbank.waitFor(u"scale: first refresh"_s))
            return true;
    }
    return false;
}

} // namespace

class SampleRunTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theUsersLibraryStaysAsItIs()
    {
        SampleMossbank mossbank;
        mossbank.choose({{u"recordsAtLaunch"_s, u"true"_s}, {u"retentionDays"_s, u"1"_s}});
        {
            HistoryStore store(HistoryStore::Writing{.root = mossbank.library()});
            store
                .save({.id = u"A"_s,
                       .timestamp = {1'700'000'000},
                       .appName = u"Editor"_s,
                       .bundleID = {},
                       .text = u"photographic"_s,
                       .filename = u"A.jpg"_s,
                       .title = {},
                       .link = {}},
                      "picture")
                .waitForFinished();
        }
        const auto before = contentsOf(mossbank.home());
        QVERIFY(before.contains(mossbank.library() + u"/Images/A.jpg"_s));
        QVERIFY(mossbank.start({u"--demo"_s}));
        QVERIFY2(mossbank.waitFor(kReady), qPrintable(mossbank.terminal()));
        QVERIFY2(mossbank.terminal().contains(u"Library: "_s + mossbank.sample()),
                 qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.sampleRows().size(), 16);
        QCOMPARE(QFileInfo(mossbank.sample()).permissions() & 0x0077, QFile::Permissions());
        mossbank.endCleanly();
        // But for what Qt keeps of fonts, nothing has been written, and nothing is missing.
        const auto after = contentsOf(mossbank.home());
        for (auto entry = before.begin(); entry != before.end(); ++entry)
            QVERIFY2(after.value(entry.key()) == entry.value(), qPrintable(entry.key()));
        for (auto entry = after.begin(); entry != after.end(); ++entry)
            QVERIFY2(before.contains(entry.key()) || entry.key().contains(u"/.cache"_s),
                     qPrintable(entry.key()));
    }

    void aUserWhoHasNoneGetsNone()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start({u"--demo"_s}));
        QVERIFY2(mossbank.waitFor(kReady), qPrintable(mossbank.terminal()));
        mossbank.endCleanly(SIGINT);
        QVERIFY(!QFileInfo::exists(mossbank.library()));
    }

    void whatTheSampleShowsIsReallyRead()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start({u"--demo"_s}));
        QVERIFY2(mossbank.waitFor(kReady), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.sampleRows({}, now()).size(), 9);
        for (const double ago : {1, 2, 4})
            QVERIFY(!mossbank.sampleRows({}, now() - ago * kADay).isEmpty());
        for (const QString& query : {u"photographic"_s, u"notebook layout"_s, u"visual memory"_s}) {
            const QList<Memory> found = mossbank.sampleRows(query);
            QCOMPARE(found.size(), 4);
            for (const Memory& memory : found) {
                QCOMPARE(memory.appName, u"Safari"_s);
                QCOMPARE(memory.link, u"https://example.com/research/visual-memory"_s);
            }
        }
        for (const Memory& memory : mossbank.sampleRows(u"aurora"_s))
            QVERIFY(memory.link.isEmpty());
        // The last screen's own words, and what is on all of them.
        QCOMPARE(mossbank.sampleRows(u"findMoments"_s).size(), 4);
        QCOMPARE(mossbank.sampleRows(u"privacy controls"_s).size(), 4);
        QCOMPARE(mossbank.sampleRows(u"fictional fixture"_s).size(), 16);
        mossbank.endCleanly();
    }

    void whatDeadOnesLeftGoesAndTheRestStays()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start({u"--demo"_s}));
        QVERIFY2(mossbank.waitFor(kReady), qPrintable(mossbank.terminal()));
        const QString killed = mossbank.sample();
        mossbank.stop(SIGKILL);
        QVERIFY(QFileInfo::exists(killed + u"/history.sqlite"_s));
        // Those of a process that lives, and of none.
        const QStringList stay = {u"MossbankDemo-1"_s, u"MossbankDemo-abc"_s};
        for (const QString& name : stay)
            QVERIFY(QDir().mkpath(mossbank.temporary(name)));
        QVERIFY(mossbank.start({u"--demo"_s}));
        QVERIFY2(mossbank.waitFor(u"Library: "_s), qPrintable(mossbank.terminal()));
        QVERIFY(!QFileInfo::exists(killed));
        QVERIFY(QFileInfo::exists(mossbank.sample()));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QCOMPARE(mossbank.leftInTemporary(), stay);
    }

    void itRunsBesideTheOneThatRecords()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningMossbank recording;
        QVERIFY(recording.start());
        QVERIFY2(recording.waitFor(u"Waiting for"_s), qPrintable(recording.terminal()));
        const auto sample = recording.startAnother({u"--demo"_s});
        QByteArray said;
        const bool isReady = QTest::qWaitFor(
            [&] {
                said += sample->readAll();
                return said.contains(kReady.toUtf8());
            },
            30'000);
        QVERIFY2(isReady, said.constData());
        sample->terminate();
        QVERIFY(sample->waitForFinished());
        QCOMPARE(sample->exitCode(), 0);
        QVERIFY(!recording.terminal().contains(kReady));
        QCOMPARE(recording.stop(SIGINT), 0);
    }

    void anOrdinaryRunStillNeedsAScreen()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start());
        QCOMPARE(mossbank.waitForEnd(), 1);
        QVERIFY2(mossbank.terminal().contains(u"There is no X display"_s),
                 qPrintable(mossbank.terminal()));
    }

    void aSampleRunWithNowhereToShowSaysSo()
    {
        SampleMossbank mossbank;
        mossbank.setVariable(u"QT_QPA_PLATFORM"_s, {});
        QVERIFY(mossbank.start({u"--demo"_s}));
        QCOMPARE(mossbank.waitForEnd(), 1);
        QCOMPARE(mossbank.terminal(), u"There is no X display: DISPLAY is not set.\n"_s);
        QVERIFY(mossbank.leftInTemporary().isEmpty());
        QVERIFY(!QFileInfo::exists(mossbank.library()));
    }

    void theFirstRunFindsNothing()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start({u"--demo"_s, u"--snapshot-first-run"_s, u"1"_s}));
        QVERIFY2(mossbank.waitFor(u"Recording is off"_s), qPrintable(mossbank.terminal()));
        QTest::qWait(1500);
        QVERIFY(mossbank.sampleRows().isEmpty());
        QVERIFY(!mossbank.terminal().contains(kReady));
        mossbank.endCleanly(SIGHUP);
    }

    // Large libraries

    void tenAreOnADay()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start({u"--demo"_s, u"--snapshot-scale"_s, u"10"_s}));
        QVERIFY2(mossbank.waitFor(u"scale: first refresh "_s), qPrintable(mossbank.terminal()));
        QVERIFY(mossbank.terminal().contains(u"scale: seeded 10 over 1 days in "_s));
        QVERIFY(mossbank.terminal().contains(u"Exploring 10 screenshot library"_s));
        const QList<Memory> rows = mossbank.sampleRows({}, now());
        QCOMPARE(rows.size(), 10);
        for (qsizetype row = 1; row < rows.size(); ++row)
            QCOMPARE(rows.at(row - 1).timestamp - rows.at(row).timestamp, 30.0);
        mossbank.endCleanly();
    }

    void sixThousandAreOnThreeDays()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start({u"--demo"_s, u"--snapshot-scale"_s, u"6000:30"_s}));
        QVERIFY2(isSeeded(mossbank), qPrintable(mossbank.terminal()));
        QVERIFY(mossbank.terminal().contains(u"scale: seeded 6000 over 3 days in "_s));
        const Calendar calendar = Calendar::current();
        QMap<QString, int> days;
        for (const Memory& memory : mossbank.sampleRows())
            ++days[calendar.local(memory.timestamp).date().toString(Qt::ISODate)];
        QCOMPARE(days.values(), (QList<int>{2880, 2880, 240}));
        QCOMPARE(days.lastKey(), calendar.local(now()).date().toString(Qt::ISODate));
        mossbank.endCleanly();
    }

    void aScaleThatIsNoNumberIsNone()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start({u"--demo"_s, u"--snapshot-scale"_s, u"abc"_s}));
        QVERIFY2(mossbank.waitFor(kReady), qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.sampleRows().size(), 16);
        QVERIFY(!mossbank.terminal().contains(u"scale:"_s));
        mossbank.endCleanly();
    }

    // Pictures

    void aPictureIsTakenAndItEnds()
    {
        SampleMossbank mossbank;
        const QString picture = mossbank.temporary(u"a.png"_s);
        QVERIFY(mossbank.start({u"--demo"_s, u"--snapshot-hold"_s, u"0"_s, u"--snapshot-day"_s,
                                u"-1"_s, u"--snapshot"_s, picture}));
        QCOMPARE(mossbank.waitForEnd(), 0);
        QVERIFY2(mossbank.terminal().contains(kReady), "it was taken before there was a history");
        QVERIFY2(!mossbank.terminal().contains(u"snapshot:"_s), qPrintable(mossbank.terminal()));
        QVERIFY(isWindow(QImage(picture)));
        QVERIFY(mossbank.leftInTemporary().isEmpty());
    }

    void whatIsAskedForIsToBeSeen_data()
    {
        QTest::addColumn<QStringList>("arguments");
        const auto row = [](const QString& option, const QString& value) {
            QTest::addRow("%s %s", qPrintable(option), qPrintable(value))
                << QStringList{option, value};
        };
        row(u"--snapshot-appearance"_s, u"dark"_s);
        row(u"--snapshot-day"_s, u"-1"_s);
        row(u"--snapshot-query"_s, u"photographic"_s);
        row(u"--snapshot-app"_s, u"Xcode"_s);
        row(u"--snapshot-show"_s, u"text"_s);
        row(u"--snapshot-show"_s, u"enlarged"_s);
        row(u"--snapshot-first-run"_s, u"1"_s);
    }
    void whatIsAskedForIsToBeSeen()
    {
        QFETCH(QStringList, arguments);
        const auto pictureWith = [](const QStringList& more) {
            SampleMossbank mossbank;
            const QString path = mossbank.temporary(u"a.png"_s);
            const QStringList always = {u"--demo"_s, u"--snapshot"_s, path};
            // Of two of a kind the first counts.
            const QStringList light = {u"--snapshot-appearance"_s, u"light"_s};
            if (!mossbank.start(always + more + light) || mossbank.waitForEnd() != 0)
                return QImage();
            return QImage(path);
        };
        static const QImage kPlain = pictureWith({});
        QVERIFY(isWindow(kPlain));
        const QImage picture = pictureWith(arguments);
        QVERIFY(isWindow(picture));
        // More than a caret.
        int differing = 0;
        const QRect both = kPlain.rect() & picture.rect();
        for (int y = 0; y < both.height(); ++y)
            for (int x = 0; x < both.width(); ++x)
                differing += kPlain.pixel(x, y) != picture.pixel(x, y) ? 1 : 0;
        const int all = both.width() * both.height();
        QVERIFY2(differing > all / 100, qPrintable(QString::number(differing)));
    }

    void oneOfTheUsersOwnLibraryNeedsNoScreenEither()
    {
        SampleMossbank mossbank;
        const QString picture = mossbank.temporary(u"a.png"_s);
        mossbank.openWindow();
        QVERIFY(mossbank.start({u"--snapshot-hold"_s, u"0"_s, u"--snapshot"_s, picture}));
        QCOMPARE(mossbank.waitForEnd(), 0);
        QVERIFY2(!mossbank.terminal().contains(u"snapshot:"_s), qPrintable(mossbank.terminal()));
        QVERIFY(isWindow(QImage(picture)));
        QVERIFY(mossbank.terminal().contains(u"Library: "_s + mossbank.library()));
        QVERIFY2(!mossbank.terminal().contains(u"Waiting"_s), "it would record");
    }

    void standingLastItTakesNone()
    {
        SampleMossbank mossbank;
        mossbank.setWorkingFolder(mossbank.temporary({}));
        QVERIFY(mossbank.start({u"--demo"_s, u"--snapshot-hold"_s, u"0"_s, u"--snapshot"_s}));
        QVERIFY2(mossbank.waitFor(kReady), qPrintable(mossbank.terminal()));
        QTest::qWait(2000);
        QVERIFY2(!mossbank.terminal().contains(u"snapshot"_s), qPrintable(mossbank.terminal()));
        mossbank.endCleanly(); // it runs on
    }

    void wrongUseIsTold_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("a value in the same argument") << QStringList{u"--snapshot=a.png"_s};
        QTest::newRow("none of the family") << QStringList{u"--snapshots"_s, u"a.png"_s};
    }
    void wrongUseIsTold()
    {
        QFETCH(QStringList, arguments);
        SampleMossbank mossbank;
        QVERIFY(mossbank.start(QStringList(u"--demo"_s) + arguments));
        QCOMPARE(mossbank.waitForEnd(), 1);
        QVERIFY2(mossbank.terminal().contains(u"snapshot"_s), qPrintable(mossbank.terminal()));
    }

    void theHelpTellsOfThem()
    {
        SampleMossbank mossbank;
        QVERIFY(mossbank.start({u"--help"_s}));
        QCOMPARE(mossbank.waitForEnd(), 0);
        for (const QString& option : {u"--demo"_s, u"--snapshot "_s, u"--snapshot-first-run"_s,
                                      u"--snapshot-scale"_s, u"--snapshot-meaning"_s})
            QVERIFY2(mossbank.terminal().contains(option), qPrintable(option));
    }
};

QTEST_GUILESS_MAIN(SampleRunTest)
#include "SampleRunTest.moc"

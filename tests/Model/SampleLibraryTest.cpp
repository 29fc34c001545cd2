// SPDX-License-Identifier: Apache-2.0
//
// What the sample library is filled with.
#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/SampleItems.h"
#include "tests/Model/RecorderRig.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QUuid>

#include <limits>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

const QString kIdle = u"Recording is off"_s;
const QString kReady = u"Exploring sample history"_s;
const QString kPage = u"https://example.com/research/visual-memory"_s;
/// In the evening, so that all of today is past.
constexpr Date kEvening = {1'700'079'000};
constexpr Date kToday = {1'700'006'400};
constexpr double kADay = 86'400;

/// Reads other words each time.
void readOtherWordsEachTime(FakeTextRecognizer& recognizer)
{
    recognizer.setLines({u"reading 1"_s, u"of it"_s});
    recognizer.setHook([&recognizer] {
        recognizer.setLines({u"reading %1"_s.arg(recognizer.readings() + 1), u"of it"_s});
    });
}

/// A start of the program with a sample library, up to its first list.
struct SampleRun {
    RecorderRig rig;
    Preferences choices{Preferences::Sample{}};
    std::unique_ptr<AppModel> model;
    QStringList measured;

    explicit SampleRun(CalendarSource days = RecorderRig::calendarOf(QTimeZone::utc()))
        : rig(false, std::move(days))
    {
        rig.clock.setNow(kEvening);
        readOtherWordsEachTime(rig.recognizer);
    }

    void make(const SampleContents& contents = {})
    {
        OpenedLibrary library = OpenedLibrary::at(rig.libraryRoot(), nullptr);
        library.sample = contents;
        model = std::make_unique<AppModel>(rig.surroundings(choices), std::move(library));
        QObject::connect(&model->sampleLibrary(), &SampleLibrary::measured, model.get(),
                         [this](const QString& line) { measured.append(line); });
    }

    void begin(const SampleContents& contents = {})
    {
        if (!model)
            make(contents);
        QSignalSpy listed(&model->launch(), &Launch::listed);
        model->finishedLaunching();
        QVERIFY(QTest::qWaitFor([&listed] { return !listed.isEmpty(); }, 60'000));
    }

    /// The oldest first.
    QList<Memory> rows() const
    {
        QList<Memory> found = model->store()->fetch({.limit = 86'400, .withText = true}).result();
        std::ranges::reverse(found);
        return found;
    }

    QByteArray picture(const Memory& memory) const
    {
        QFile file(model->store()->images() + u'/' + memory.filename);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString status() const { return model->recorder().status(); }
};

} // namespace

class SampleLibraryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sixteenScreenshotsLieOnFourDays()
    {
        SampleRun run;
        run.begin();
        QCOMPARE(run.status(), kReady);
        QVERIFY(!run.model->recorder().errorMessage());
        QList<Date> times;
        for (const auto& [daysAgo, count] :
             std::initializer_list<std::pair<int, int>>{{4, 1}, {2, 2}, {1, 4}, {0, 9}}) {
            for (int i = 0; i < count; ++i)
                times.append(kToday + (-daysAgo * kADay + 9 * 3600 + i * 2260));
        }
        QList<Date> found;
        for (const Memory& memory : run.rows())
            found.append(memory.timestamp);
        QCOMPARE(found, times);
        QCOMPARE(run.model->listing().stats().count, 16);
        QVERIFY(run.measured.isEmpty());
    }

    void theItemsComeInTurn()
    {
        SampleRun run;
        run.begin();
        // As they were put in: from today backwards.
        QList<Memory> rows = run.rows();
        std::ranges::sort(rows, [](const Memory& one, const Memory& other) {
            const double first = std::floor(one.timestamp.secondsSince1970 / kADay);
            const double second = std::floor(other.timestamp.secondsSince1970 / kADay);
            return first != second ? first > second : one.timestamp < other.timestamp;
        });
        const QStringList apps = {u"Notes"_s, u"Safari"_s, u"Xcode"_s, u"Notes"_s};
        const QStringList bundles = {u"com.apple.Notes"_s, u"com.apple.Safari"_s,
                                     u"com.apple.dt.Xcode"_s, u"com.apple.Notes"_s};
        const QStringList titles = {u"A calmer workspace"_s, u"Research / visual memory"_s,
                                    u"CaptureStore"_s, u"Friday / work in progress"_s};
        QCOMPARE(rows.size(), 16);
        QSet<QString> ids;
        for (qsizetype k = 0; k < rows.size(); ++k) {
            const Memory& memory = rows.at(k);
            QCOMPARE(memory.appName, apps.at(k % 4));
            QCOMPARE(memory.bundleID, bundles.at(k % 4));
            QCOMPARE(memory.title, titles.at(k % 4));
            QCOMPARE(memory.link, k % 4 == 1 ? kPage : QString());
            QCOMPARE(memory.text, u"reading %1\nof it"_s.arg(k % 4 + 1));
            QCOMPARE(memory.id, memory.id.toUpper());
            QVERIFY(!QUuid(memory.id).isNull());
            QCOMPARE(memory.filename, memory.id + u".jpg"_s);
            ids.insert(memory.id);
            const QByteArray picture = run.picture(memory);
            QVERIFY(picture.startsWith("\xff\xd8"));
            QCOMPARE(memory.bytes, picture.size());
            QCOMPARE(QImage::fromData(picture).size(), QSize(1440, 900));
            QCOMPARE(picture == run.picture(rows.at(1)), k % 4 == 1);
        }
        QCOMPARE(ids.size(), 16);
    }

    void aScreenIsReadOnceAndTheRecogniserRests()
    {
        SampleRun run;
        run.begin();
        QCOMPARE(run.rig.recognizer.readings(), 4);
        QVERIFY(!run.rig.recognizer.lastOptions().correctsLanguage);
        QVERIFY(run.rig.recognizer.rests() > 0);
    }

    void theLastLinesAreThose()
    {
        QCOMPARE(sampleItems().size(), 4);
        QCOMPARE(sampleItems().at(1).lines.last(), u"Search phrase: photographic memory"_s);
        QCOMPARE(sampleItems().at(2).lines.at(2),
                 u"    let results = try await history.search(phrase)"_s);
        QCOMPARE(sampleItems().at(3).lines.size(), 7);
        QCOMPARE(sampleItems().at(3).lines.at(1), u"Project Aurora — Friday review"_s);
    }

    void daysAreThoseOfTheCalendar()
    {
        // The clocks were put on in the night to yesterday.
        const QTimeZone zone("Europe/Berlin");
        SampleRun run(RecorderRig::calendarOf(zone));
        run.rig.clock.setNow({1'774'900'000});
        run.begin();
        const Calendar calendar(zone, QLocale::c());
        QList<Date> times;
        for (const auto& [month, day, count] : std::initializer_list<std::tuple<int, int, int>>{
                 {3, 26, 1}, {3, 28, 2}, {3, 29, 4}, {3, 30, 9}}) {
            const auto start = calendar.startOfDay(2026, month, day);
            QVERIFY(start);
            for (int i = 0; i < count; ++i)
                times.append(*start + (32'400 + i * 2260));
        }
        QList<Date> found;
        for (const Memory& memory : run.rows())
            found.append(memory.timestamp);
        QCOMPARE(found, times);
    }

    void aReadingThatFailsEndsIt_data()
    {
        QTest::addColumn<int>("failing");
        QTest::addColumn<int>("saved");
        QTest::newRow("the first") << 1 << 0;
        QTest::newRow("the third") << 3 << 2;
    }
    void aReadingThatFailsEndsIt()
    {
        QFETCH(int, failing);
        QFETCH(int, saved);
        SampleRun run;
        run.rig.recognizer.setHook([&run, failing] {
            if (run.rig.recognizer.readings() == failing)
                throw Failure(u"The recogniser has no model."_s);
        });
        run.begin();
        QCOMPARE(run.status(), u"Could not prepare sample history: The recogniser has no model."_s);
        QCOMPARE(run.rows().size(), saved);
        QCOMPARE(run.model->listing().stats().count, saved);
    }

    void aSaveThatFailsEndsIt_data()
    {
        QTest::addColumn<bool>("isLarge");
        QTest::addColumn<QString>("status");
        QTest::newRow("few") << false << u"Could not prepare sample history: "_s;
        QTest::newRow("many") << true << u"Could not prepare the large library: "_s;
    }
    void aSaveThatFailsEndsIt()
    {
        QFETCH(bool, isLarge);
        QFETCH(QString, status);
        SampleRun run;
        run.make({.scale = isLarge ? std::optional<qsizetype>(10) : std::nullopt});
        const QString images = run.model->store()->images();
        QVERIFY(QDir(images).removeRecursively());
        run.begin();
        QVERIFY2(run.status().startsWith(status) && run.status().contains(images),
                 qPrintable(run.status()));
        QVERIFY(run.rows().isEmpty());
        QVERIFY(run.measured.filter(u"seeded"_s).isEmpty());
    }

    void theFirstRunFindsNothing()
    {
        SampleRun run;
        run.rig.screen.isAllowedNow = false;
        run.begin({.isEmpty = true, .scale = 5});
        QCOMPARE(run.status(), kIdle);
        QVERIFY(run.rows().isEmpty());
        QVERIFY(run.measured.isEmpty());
        // Nothing is going to be seen of the screen.
        QCOMPARE(run.model->launch().firstRun(run.model->listing().stats()),
                 Launch::FirstRun::Ready);
    }

    void theUsersLibraryIsNeverFilled()
    {
        RecorderRig rig(false);
        AppModel model(rig.surroundings(), OpenedLibrary::at(rig.libraryRoot(), nullptr));
        QSignalSpy listed(&model.launch(), &Launch::listed);
        model.finishedLaunching();
        QTRY_COMPARE(listed.size(), 1);
        QCOMPARE(model.listing().stats().count, 0);
        QCOMPARE(model.recorder().status(), kIdle);
    }

    void withoutALibraryThereIsNothingToFill()
    {
        SampleRun run;
        QFile blocking(run.rig.libraryRoot());
        QVERIFY(blocking.open(QIODevice::WriteOnly));
        run.begin();
        QVERIFY(!run.model->store());
        QCOMPARE(run.rig.recognizer.readings(), 0);
        QCOMPARE(run.status(), kIdle);
    }

    void whoEndsItMeanwhileWaitsForNothing()
    {
        SampleRun run;
        QSemaphore isReading;
        QSemaphore goesOn;
        run.rig.recognizer.setHook([&] {
            isReading.release();
            goesOn.acquire();
        });
        run.make();
        run.model->finishedLaunching();
        QVERIFY(QTest::qWaitFor([&] { return isReading.tryAcquire(); }));
        run.model.reset();
        goesOn.release(4);
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QCOMPARE(run.rig.recognizer.readings(), 1);
    }

    // Large libraries

    void soManyOnADay()
    {
        SampleRun run;
        run.begin({.scale = 10});
        QCOMPARE(run.status(), u"Exploring 10 screenshot library"_s);
        const QList<Memory> rows = run.rows();
        QCOMPARE(rows.size(), 10);
        const QByteArray picture = run.picture(rows.first());
        QCOMPARE(QImage::fromData(picture).size(), QSize(1440, 900));
        QSet<QString> ids;
        for (qsizetype i = 0; i < rows.size(); ++i) {
            const Memory& memory = rows.at(i);
            QCOMPARE(memory.timestamp, kToday + 30.0 * static_cast<double>(i));
            QCOMPARE(memory.link, QString());
            QCOMPARE(memory.id, memory.id.toUpper());
            QCOMPARE(memory.filename, memory.id + u".jpg"_s);
            QCOMPARE(run.picture(memory), picture);
            ids.insert(memory.id);
        }
        QCOMPARE(ids.size(), 10);
        QCOMPARE(run.rig.recognizer.readings(), 0);
    }

    void whatItTookIsTold()
    {
        SampleRun run;
        run.begin({.scale = 10});
        QCOMPARE(run.measured.size(), 2);
        static const QRegularExpression kSeeded(
            u"^scale: seeded 10 over 1 days in \\d+\\.\\d+ seconds$"_s);
        static const QRegularExpression kListed(u"^scale: first refresh \\d+\\.\\d+ seconds$"_s);
        QVERIFY2(kSeeded.match(run.measured.at(0)).hasMatch(), qPrintable(run.measured.at(0)));
        QVERIFY2(kListed.match(run.measured.at(1)).hasMatch(), qPrintable(run.measured.at(1)));
    }

    void theLastDayIsAsFullAsItGets()
    {
        SampleRun run;
        // Eight hours apart, so three a day.
        run.begin({.scale = 7, .scaleInterval = 28'800});
        QList<Date> times;
        for (int i = 0; i < 7; ++i)
            times.append(kToday + (-2 * kADay + 28'800.0 * i));
        QList<Date> found;
        for (const Memory& memory : run.rows())
            found.append(memory.timestamp);
        QCOMPARE(found, times);
        QVERIFY2(run.measured.first().startsWith(u"scale: seeded 7 over 3 days in "_s),
                 qPrintable(run.measured.first()));
    }

    void noneAndFewerThanNoneAreNone_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("none") << 0;
        QTest::newRow("fewer") << -3;
    }
    void noneAndFewerThanNoneAreNone()
    {
        QFETCH(int, count);
        SampleRun run;
        run.begin({.scale = count});
        QVERIFY(run.rows().isEmpty());
        QCOMPARE(run.status(), u"Exploring %1 screenshot library"_s.arg(count));
    }

    void theSpread_data()
    {
        QTest::addColumn<qsizetype>("count");
        QTest::addColumn<double>("interval");
        QTest::addColumn<qsizetype>("perDay");
        QTest::addColumn<qsizetype>("days");
        const auto row = [](const char* name, qsizetype count, double interval, qsizetype perDay,
                            qsizetype days) {
            QTest::newRow(name) << count << interval << perDay << days;
        };
        constexpr qsizetype kMost = std::numeric_limits<qsizetype>::max();
        row("ten", 10, 30, 2880, 1);
        row("two days and a bit", 6000, 30, 2880, 3);
        row("a day", 2880, 30, 2880, 1);
        row("one more", 2881, 30, 2880, 2);
        row("cut to a whole number", 20'000, 7, 12'342, 2);
        row("two days apart", 5, 172'800, 1, 5);
        row("none", 0, 30, 2880, 1);
        row("fewer", -5, 30, 2880, 1);
        row("hardly apart", 10, 1e-300, 1'000'000'000'000'000, 1);
        row("all there are numbers for", kMost, 86'400, 1, kMost);
    }
    void theSpread()
    {
        QFETCH(qsizetype, count);
        QFETCH(double, interval);
        const auto spread = SampleLibrary::spread(count, interval);
        QTEST(spread.perDay, "perDay");
        QTEST(spread.days, "days");
    }

    void anApplicationStaysForAWhile()
    {
        ScaleRows rows(QRandomGenerator(1));
        QList<int> runs;
        QString shown;
        QSet<QString> all;
        for (int i = 0; i < 20'000; ++i) {
            const Memory memory = rows.next({});
            const QString now = memory.appName + u'/' + memory.title;
            if (now != shown)
                runs.append(0);
            ++runs.last();
            shown = now;
            all.insert(now);
        }
        runs.removeLast();
        QCOMPARE(all.size(), 36);
        QCOMPARE(std::ranges::min(runs), 5);
        QVERIFY(runs.contains(40));
        // The same comes twice in a row one time in thirty-six.
        const auto longer = std::ranges::count_if(runs, [](int run) { return run > 40; });
        QVERIFY2(longer < runs.size() / 20, qPrintable(QString::number(longer)));
    }

    void theWordsAreThose()
    {
        const QStringList kWords =
            u"project aurora review timeline capture index search screenshot history privacy "
            "retention display keyboard release budget meeting invoice draft"_s.split(u' ');
        const QMap<QString, QString> kBundles = {
            {u"Safari"_s, u"com.apple.Safari"_s},     {u"Xcode"_s, u"com.apple.dt.Xcode"_s},
            {u"Notes"_s, u"com.apple.Notes"_s},       {u"Mail"_s, u"com.apple.mail"_s},
            {u"Terminal"_s, u"com.apple.Terminal"_s}, {u"Slack"_s, u"com.tinyspeck.slackmacgap"_s}};
        const QStringList kTitles = {
            u"Quarterly forecast"_s, u"Project Aurora — design notes"_s,
            u"Release checklist"_s,  u"Pull request #482: encrypt the vault"_s,
            u"Invoice 2026-114"_s,   u"Weekly team sync"_s};
        ScaleRows rows(QRandomGenerator(2));
        QSet<QString> drawn;
        for (int i = 0; i < 500; ++i) {
            const Memory memory = rows.next({static_cast<double>(i)});
            QCOMPARE(memory.timestamp, Date{static_cast<double>(i)});
            QVERIFY(kBundles.contains(memory.appName));
            QCOMPARE(memory.bundleID, kBundles.value(memory.appName));
            QVERIFY2(kTitles.contains(memory.title), qPrintable(memory.title));
            const QStringList words = memory.text.split(u' ');
            QCOMPARE(words.size(), 90);
            for (const QString& word : words)
                QVERIFY2(kWords.contains(word), qPrintable(word));
            drawn.unite(QSet<QString>(words.begin(), words.end()));
        }
        QCOMPARE(drawn.size(), kWords.size());
    }

    void whatItIsDrawnByMakesIt()
    {
        const auto texts = [](quint32 seed) {
            SampleRun run;
            run.begin({.scale = 20, .seed = seed});
            QStringList found;
            for (const Memory& memory : run.rows())
                found.append(memory.appName + memory.title + memory.text);
            return found;
        };
        const QStringList first = texts(7);
        QCOMPARE(first.size(), 20);
        QCOMPARE(texts(7), first);
        QVERIFY(texts(8) != first);
    }
};

QTEST_MAIN(SampleLibraryTest)
#include "SampleLibraryTest.moc"

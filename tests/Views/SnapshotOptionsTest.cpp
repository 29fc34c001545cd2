// SPDX-License-Identifier: Apache-2.0
//
// What the command line says of the sample library and of a picture of a window.
#include "Mossbank/Views/Snapshot/SnapshotOptions.h"

#include <QRegularExpression>
#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;
using Mode = Appearance::Mode;

Q_DECLARE_METATYPE(std::optional<QString>)
Q_DECLARE_METATYPE(std::optional<qsizetype>)
Q_DECLARE_METATYPE(std::optional<int>)
Q_DECLARE_METATYPE(std::optional<double>)
Q_DECLARE_METATYPE(std::optional<Appearance::Mode>)

namespace {

/// A command line, with a bar between two arguments.
SnapshotOptions options(const QString& written)
{
    return SnapshotOptions(QStringList(u"mossbank"_s) +
                           (written.isEmpty() ? QStringList() : written.split(u'|')));
}

} // namespace

class SnapshotOptionsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aValueIsTheNextArgument_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<std::optional<QString>>("path");
        const auto row = [](const char* name, const QString& written,
                            const std::optional<QString>& path) {
            QTest::newRow(name) << written << path;
        };
        row("none", {}, {});
        row("others", u"--demo|--snapshot-day|1"_s, {});
        row("one", u"--snapshot|a.png"_s, u"a.png"_s);
        row("amid others", u"--demo|--snapshot|a.png|--at-login"_s, u"a.png"_s);
        row("it stands last", u"--demo|--snapshot"_s, {});
        row("the first counts", u"--snapshot|a.png|--snapshot|b.png"_s, u"a.png"_s);
        row("the first stands before another", u"--snapshot|--demo|--snapshot|b.png"_s,
            u"--demo"_s);
        row("empty", u"--snapshot||--demo"_s, u""_s);
        row("with spaces", u"--snapshot|a b.png"_s, u"a b.png"_s);
        row("the beginning of its name", u"--snap|a.png"_s, {});
        row("in one argument", u"--snapshot=a.png"_s, {});
    }
    void aValueIsTheNextArgument()
    {
        QFETCH(QString, written);
        QTEST(options(written).path(), "path");
        QTEST(options(written).value(u"--snapshot"), "path");
    }

    void theProgramsNameIsNoOption()
    {
        const SnapshotOptions named({u"--demo"_s, u"--snapshot"_s});
        QVERIFY(!named.isDemo());
        QVERIFY(!SnapshotOptions(QStringList()).path());
        QCOMPARE(SnapshotOptions({u"--snapshot"_s, u"a.png"_s}).path(), std::nullopt);
    }

    void theSampleLibraryIsAskedForAnywhere_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<bool>("isDemo");
        QTest::newRow("no") << u"--at-login"_s << false;
        QTest::newRow("yes") << u"--demo"_s << true;
        QTest::newRow("last") << u"--snapshot|a.png|--demo"_s << true;
        QTest::newRow("with a value") << u"--demo=1"_s << false;
        QTest::newRow("in capitals") << u"--DEMO"_s << false;
    }
    void theSampleLibraryIsAskedForAnywhere()
    {
        QFETCH(QString, written);
        QTEST(options(written).isDemo(), "isDemo");
    }

    void aFirstRunTakesAnything_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<bool>("isFirstRun");
        QTest::newRow("no") << u"--demo"_s << false;
        QTest::newRow("a word") << u"--snapshot-first-run|yes"_s << true;
        QTest::newRow("a no") << u"--snapshot-first-run|0"_s << true;
        QTest::newRow("it stands last") << u"--snapshot-first-run"_s << false;
    }
    void aFirstRunTakesAnything()
    {
        QFETCH(QString, written);
        QTEST(options(written).isFirstRun(), "isFirstRun");
    }

    void theScale_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<std::optional<qsizetype>>("scale");
        QTest::addColumn<double>("interval");
        const auto row = [](const QString& value, std::optional<qsizetype> scale, double interval) {
            QTest::addRow("'%s'", qPrintable(value))
                << u"--snapshot-scale|"_s + value << scale << interval;
        };
        row(u"10"_s, 10, 30);
        row(u"6000:30"_s, 6000, 30);
        row(u"10:0.5"_s, 10, 0.5);
        row(u"10:7:9"_s, 10, 7);
        row(u"10:"_s, 10, 30);
        row(u"10:0"_s, 10, 30);
        row(u"10:-5"_s, 10, 30);
        row(u"10:abc"_s, 10, 30);
        row(u"10:nan"_s, 10, 30);
        row(u"10:inf"_s, 10, 30);
        row(u"0"_s, 0, 30);
        row(u"-5"_s, -5, 30);
        row(u"+5"_s, 5, 30);
        row(u"abc"_s, {}, 30);
        row(u""_s, {}, 30);
        row(u":5"_s, {}, 5);
        row(u"1.5"_s, {}, 30);
        row(u"1e3"_s, {}, 30);
        row(u" 10"_s, {}, 30);
        row(u"10 "_s, {}, 30);
        row(u"10x"_s, {}, 30);
        row(u"٣"_s, {}, 30);
        row(u"99999999999999999999"_s, {}, 30);
        QTest::newRow("none") << u"--demo"_s << std::optional<qsizetype>() << 30.0;
        QTest::newRow("last") << u"--snapshot-scale"_s << std::optional<qsizetype>() << 30.0;
    }
    void theScale()
    {
        QFETCH(QString, written);
        QTEST(options(written).scale(), "scale");
        QTEST(options(written).scaleInterval(), "interval");
    }

    void theHold_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<double>("seconds");
        const auto row = [](const QString& value, double seconds) {
            QTest::addRow("'%s'", qPrintable(value)) << u"--snapshot-hold|"_s + value << seconds;
        };
        row(u"2"_s, 2);
        row(u"0.25"_s, 0.25);
        row(u"0"_s, 0);
        row(u"30"_s, 30);
        row(u"30.5"_s, 30);
        row(u"99"_s, 30);
        row(u"-1"_s, 0);
        row(u"inf"_s, 30);
        row(u"-inf"_s, 0);
        row(u"nan"_s, 1.5);
        row(u"soon"_s, 1.5);
        row(u""_s, 1.5);
        row(u" 2"_s, 1.5);
        row(u"2,5"_s, 1.5);
        QTest::newRow("none") << u"--demo"_s << 1.5;
        QTest::newRow("last") << u"--demo|--snapshot-hold"_s << 1.5;
    }
    void theHold()
    {
        QFETCH(QString, written);
        QTEST(options(written).hold(), "seconds");
    }

    void theAppearance_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<std::optional<Mode>>("appearance");
        QTest::newRow("none") << QString() << std::optional<Mode>();
        QTest::newRow("light") << u"light"_s << std::optional(Mode::Light);
        QTest::newRow("dark") << u"dark"_s << std::optional(Mode::Dark);
        QTest::newRow("as it is") << u"system"_s << std::optional<Mode>();
        QTest::newRow("in capitals") << u"Dark"_s << std::optional<Mode>();
    }
    void theAppearance()
    {
        QFETCH(QString, written);
        QTEST(options(u"--snapshot-appearance|"_s + written).appearance(), "appearance");
    }

    void theDay_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<std::optional<int>>("days");
        const auto row = [](const QString& value, std::optional<int> days) {
            QTest::addRow("'%s'", qPrintable(value)) << u"--snapshot-day|"_s + value << days;
        };
        row(u"-1"_s, -1);
        row(u"0"_s, 0);
        row(u"+2"_s, 2);
        row(u"1.0"_s, {});
        row(u"yesterday"_s, {});
        row(u"--1"_s, {});
        row(u"9999999999"_s, {});
        row(u"-9999999999"_s, {});
        QTest::newRow("none") << u"--demo"_s << std::optional<int>();
        QTest::newRow("last") << u"--snapshot-day"_s << std::optional<int>();
    }
    void theDay()
    {
        QFETCH(QString, written);
        QTEST(options(written).dayShift(), "days");
    }

    void theZoom_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<std::optional<double>>("zoom");
        QTest::newRow("whole") << u"4"_s << std::optional(4.0);
        QTest::newRow("with a fraction") << u"2.5"_s << std::optional(2.5);
        QTest::newRow("no number") << u"far"_s << std::optional<double>();
        QTest::newRow("none") << u"nan"_s << std::optional<double>();
    }
    void theZoom()
    {
        QFETCH(QString, written);
        QTEST(options(u"--snapshot-zoom|"_s + written).timelineZoom(), "zoom");
    }

    void statesAreShownByTheirNames_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("none") << QString() << QStringList();
        QTest::newRow("one") << u"--snapshot-show|text"_s << QStringList{u"text"_s};
        QTest::newRow("two") << u"--snapshot-show|text,all-history"_s
                             << QStringList{u"text"_s, u"all-history"_s};
        QTest::newRow("with spaces") << u"--snapshot-show| timeline , enlarged"_s
                                     << QStringList{u"timeline"_s, u"enlarged"_s};
        QTest::newRow("unknown ones")
            << u"--snapshot-show|by-meaning,texts,all,"_s << QStringList{u"by-meaning"_s};
        QTest::newRow("last") << u"--snapshot-show"_s << QStringList();
        QTest::newRow("the first counts")
            << u"--snapshot-show|text|--snapshot-show|enlarged"_s << QStringList{u"text"_s};
    }
    void statesAreShownByTheirNames()
    {
        QFETCH(QString, written);
        QFETCH(QStringList, shown);
        for (const QString& state :
             {u"all-history"_s, u"timeline"_s, u"by-meaning"_s, u"text"_s, u"enlarged"_s})
            QCOMPARE(options(written).shows(state), shown.contains(state));
    }

    void textsAreTakenAsTheyAre()
    {
        const SnapshotOptions given =
            options(u"--snapshot-query|-photo, graph|--snapshot-ask|Who? |--snapshot-engine|off|"
                    "--snapshot-meaning|nomic|--snapshot-settings|privacy|--snapshot-app|Notes"_s);
        QCOMPARE(given.query(), u"-photo, graph"_s);
        QCOMPARE(given.question(), u"Who? "_s);
        QCOMPARE(given.engine(), u"off"_s);
        QCOMPARE(given.meaning(), u"nomic"_s);
        QCOMPARE(given.settings(), u"privacy"_s);
        QCOMPARE(given.app(), u"Notes"_s);
        const SnapshotOptions none = options(u"--demo"_s);
        QVERIFY(!none.query() && !none.question() && !none.engine() && !none.meaning() &&
                !none.settings() && !none.app());
    }

    // What is left for the rest of the command line.
    void theOthersAreLeft_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QStringList>("others");
        QTest::newRow("none") << u"--demo|--snapshot|a.png"_s << QStringList();
        QTest::newRow("some") << u"--at-login|--snapshot-day|-1|--help"_s
                              << QStringList{u"--at-login"_s, u"--help"_s};
        QTest::newRow("behind one without a value")
            << u"--demo|--help"_s << QStringList{u"--help"_s};
        QTest::newRow("last without its value")
            << u"--help|--snapshot"_s << QStringList{u"--help"_s};
        QTest::newRow("a value like an option")
            << u"--snapshot-query|--help|--version"_s << QStringList{u"--version"_s};
        QTest::newRow("two names in a row")
            << u"--snapshot-query|--snapshot-day|3|--help"_s << QStringList{u"--help"_s};
        QTest::newRow("in one argument")
            << u"--snapshot=a.png"_s << QStringList{u"--snapshot=a.png"_s};
        QTest::newRow("unknown") << u"--snapshots|a"_s << QStringList{u"--snapshots"_s, u"a"_s};
    }
    void theOthersAreLeft()
    {
        QFETCH(QString, written);
        QTEST(options(written).others(), "others");
    }

    void eachHasItsHelp()
    {
        QStringList names;
        for (const SnapshotOptions::Option& option : SnapshotOptions::all()) {
            names.append(option.name);
            QVERIFY(!option.help.isEmpty());
            QCOMPARE(option.takesValue, option.name != u"--demo");
        }
        for (const QString& name :
             u"--demo --snapshot --snapshot-first-run --snapshot-scale --snapshot-settings "
             "--snapshot-appearance --snapshot-hold --snapshot-query --snapshot-day "
             "--snapshot-zoom --snapshot-ask --snapshot-show --snapshot-engine "
             "--snapshot-meaning"_s.split(u' '))
            QVERIFY2(names.contains(name), qPrintable(name));
    }
};

QTEST_GUILESS_MAIN(SnapshotOptionsTest)
#include "SnapshotOptionsTest.moc"

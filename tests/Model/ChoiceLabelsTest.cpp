// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ChoiceLabels.h"

#include "Mossbank/Model/ChoiceLists.h"
#include "Mossbank/Model/Preferences.h"

#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <vector>

using namespace mossbank;
using namespace Qt::StringLiterals;

class ChoiceLabelsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anIntervalIsToldInSecondsOrWholeMinutes_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("every");
        QTest::newRow("one") << 1.0 << u"1 second"_s << u"every second"_s;
        QTest::newRow("rounded to one") << 0.5 << u"1 second"_s << u"every second"_s;
        QTest::newRow("none") << 0.0 << u"0 seconds"_s << u"every 0 seconds"_s;
        QTest::newRow("some") << 30.0 << u"30 seconds"_s << u"every 30 seconds"_s;
        QTest::newRow("below a minute") << 59.4 << u"59 seconds"_s << u"every 59 seconds"_s;
        QTest::newRow("rounded to a minute") << 59.6 << u"1 minute"_s << u"every minute"_s;
        QTest::newRow("a minute and a half") << 90.0 << u"1 minute"_s << u"every minute"_s;
        QTest::newRow("just below two") << 119.0 << u"1 minute"_s << u"every minute"_s;
        QTest::newRow("two") << 120.0 << u"2 minutes"_s << u"every 2 minutes"_s;
        QTest::newRow("ten") << 600.0 << u"10 minutes"_s << u"every 10 minutes"_s;
        QTest::newRow("whole ones") << 659.0 << u"10 minutes"_s << u"every 10 minutes"_s;
    }
    void anIntervalIsToldInSecondsOrWholeMinutes()
    {
        QFETCH(double, seconds);
        QFETCH(QString, label);
        QFETCH(QString, every);
        QCOMPARE(ChoiceLabels::intervalLabel(seconds), label);
        QCOMPARE(ChoiceLabels::everyIntervalLabel(seconds), every);
    }

    void whatCannotBeAnIntervalStillHasWords()
    {
        QVERIFY(ChoiceLabels::intervalLabel(1e300).endsWith(u" minutes"_s));
        QVERIFY(ChoiceLabels::intervalLabel(-1e300).endsWith(u" seconds"_s));
    }

    void aRefreshIsToldInMinutes_data()
    {
        QTest::addColumn<double>("minutes");
        QTest::addColumn<QString>("label");
        QTest::newRow("fifteen") << 15.0 << u"15 minutes"_s;
        QTest::newRow("thirty") << 30.0 << u"30 minutes"_s;
        QTest::newRow("an hour") << 60.0 << u"1 hour"_s;
        QTest::newRow("rounded to an hour") << 59.5 << u"1 hour"_s;
        QTest::newRow("more") << 61.0 << u"61 minutes"_s;
    }
    void aRefreshIsToldInMinutes()
    {
        QFETCH(double, minutes);
        QFETCH(QString, label);
        QCOMPARE(ChoiceLabels::refreshLabel(minutes), label);
    }

    void howLongScreenshotsAreKept_data()
    {
        QTest::addColumn<int>("days");
        QTest::addColumn<QString>("label");
        QTest::newRow("for ever") << 0 << u"Forever"_s;
        QTest::newRow("below that") << -7 << u"Forever"_s;
        QTest::newRow("a day") << 1 << u"1 day"_s;
        QTest::newRow("a year") << 365 << u"365 days"_s;
    }
    void howLongScreenshotsAreKept()
    {
        QFETCH(int, days);
        QFETCH(QString, label);
        QCOMPARE(ChoiceLabels::retentionLabel(days), label);
    }

    void aModeOfNoKnownNameHasTheWordsOfTheLast_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("appearance");
        const QString any = u"Any change"_s;
        const QString system = u"Match System"_s;
        QTest::newRow("flicker") << u"flicker"_s << u"Ignore what moves on its own"_s << system;
        QTest::newRow("obvious") << u"obvious"_s << u"Only obvious changes"_s << system;
        QTest::newRow("any") << u"any"_s << any << system;
        QTest::newRow("empty") << QString() << any << system;
        QTest::newRow("light") << u"light"_s << any << u"Light"_s;
        QTest::newRow("dark") << u"dark"_s << any << u"Dark"_s;
        QTest::newRow("system") << u"system"_s << any << system;
        QTest::newRow("another case") << u"Dark"_s << any << system;
    }
    void aModeOfNoKnownNameHasTheWordsOfTheLast()
    {
        QFETCH(QString, mode);
        QFETCH(QString, change);
        QFETCH(QString, appearance);
        QCOMPARE(ChoiceLabels::changeLabel(mode), change);
        QCOMPARE(ChoiceLabels::appearanceLabel(mode), appearance);
    }

    void aValueStandsOnTheNearestChoice_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<std::vector<double>>("choices");
        QTest::addColumn<double>("step");
        const std::vector<double> three = {10, 20, 30};
        QTest::newRow("one of them") << 20.0 << three << 1.0;
        QTest::newRow("between two, the earlier") << 25.0 << three << 1.0;
        QTest::newRow("nearer the later") << 25.1 << three << 2.0;
        QTest::newRow("below") << -5.0 << three << 0.0;
        QTest::newRow("above") << 1e9 << three << 2.0;
        QTest::newRow("one choice") << 25.0 << std::vector<double>{20} << 0.0;
        QTest::newRow("no choice") << 25.0 << std::vector<double>() << 0.0;
    }
    void aValueStandsOnTheNearestChoice()
    {
        QFETCH(double, value);
        QFETCH(std::vector<double>, choices);
        QFETCH(double, step);
        QCOMPARE(ChoiceLabels::step(value, choices), step);
    }

    void everyChoiceHasItsWords()
    {
        QStringList intervals;
        for (const double seconds : ChoiceLists::kIntervals)
            intervals.append(ChoiceLabels::intervalLabel(seconds));
        QCOMPARE(intervals.join(u", "_s),
                 u"1 second, 2 seconds, 3 seconds, 5 seconds, 10 seconds, 15 seconds, 20 seconds, "
                 "30 seconds, 45 seconds, 1 minute, 2 minutes, 5 minutes, 10 minutes"_s);
        QStringList days;
        for (const int count : ChoiceLists::kRetentionDays)
            days.append(ChoiceLabels::retentionLabel(count));
        QCOMPARE(days.join(u", "_s), u"1 day, 3 days, 7 days, 14 days, 30 days, 60 days, 90 days, "
                                     "180 days, 365 days, Forever"_s);
        QStringList refreshes;
        for (const double minutes : ChoiceLists::kUnchangedRefreshMinutes)
            refreshes.append(ChoiceLabels::refreshLabel(minutes));
        QCOMPARE(refreshes.join(u", "_s),
                 u"5 minutes, 10 minutes, 15 minutes, 30 minutes, 1 hour"_s);
        QStringList modes;
        for (const char16_t* const mode : ChoiceLists::kChangeModes)
            modes.append(ChoiceLabels::changeLabel(QString::fromUtf16(mode)));
        for (const char16_t* const mode : ChoiceLists::kAppearanceModes)
            modes.append(ChoiceLabels::appearanceLabel(QString::fromUtf16(mode)));
        QCOMPARE(modes.join(u", "_s), u"Any change, Ignore what moves on its own, Only obvious "
                                      "changes, Match System, Light, Dark"_s);
    }

    void whatIsSoByDefaultCanBeChosen()
    {
        const QTemporaryDir folder;
        const Preferences fresh(folder.filePath(u"none.ini"_s));
        const auto has = [](const auto& choices, const auto& value) {
            return std::ranges::find(choices, value) != std::end(choices);
        };
        QVERIFY(has(ChoiceLists::kIntervals, fresh.interval()));
        QVERIFY(has(ChoiceLists::kRetentionDays, fresh.retentionDays()));
        QVERIFY(has(ChoiceLists::kUnchangedRefreshMinutes, fresh.unchangedRefreshMinutes()));
        QCOMPARE(ChoiceLists::kLeastImageQuality, 0.4);
        QCOMPARE(ChoiceLists::kMostImageQuality, 0.95);
        QVERIFY(has(ChoiceLists::kChangeModes, QStringView(fresh.changeMode())));
        QVERIFY(has(ChoiceLists::kAppearanceModes, QStringView(fresh.appearanceMode())));
    }

    void forEverIsAChoiceLikeOthers()
    {
        QCOMPARE(ChoiceLabels::step(0, ChoiceLists::kRetentionDays), 9.0);
        QCOMPARE(ChoiceLabels::step(25, std::vector<int>{20, 30}), 0.0);
        QCOMPARE(ChoiceLabels::step(std::numeric_limits<int>::min(), std::vector<int>{20, 30}),
                 0.0);
    }
};

QTEST_GUILESS_MAIN(ChoiceLabelsTest)
#include "ChoiceLabelsTest.moc"

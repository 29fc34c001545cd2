// SPDX-License-Identifier: Apache-2.0
//
// What a capture pass takes for a change, and what becomes of a screen without one.
#include "tests/Model/RecorderRig.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

class UnchangedScreenTest : public QObject {
    Q_OBJECT

    static void everyMode()
    {
        QTest::addColumn<QString>("mode");
        for (const char* mode : {"flicker", "obvious", "any"})
            QTest::newRow(mode) << QString::fromLatin1(mode);
    }

    /// A screen of which each pixel is a cell.
    static void makeSmall(RecorderRig& rig, const QColor& colour = Qt::white)
    {
        rig.screen.pictureNow = QImage(192, 192, QImage::Format_RGB32);
        rig.screen.pictureNow.fill(colour);
        rig.screen.contentNow.displays.first().frame = rig.screen.pictureNow.rect();
    }

    /// Before the third blink of a caret it is not yet known for one: that its cells have moved for
    /// the third time counts for the picture in which they have.
    static constexpr qsizetype kSavedUntilLearnt = 3;

    static constexpr QRect kCaret = {50, 50, 1, 4};

    /// A caret of four cells goes on and off, a pass after each. Ends without it.
    static void blinkEightTimes(RecorderRig& rig)
    {
        for (int blink = 0; blink < 8; ++blink) {
            rig.drawBlock(kCaret, blink % 2 ? Qt::white : Qt::black);
            rig.nextPass();
        }
    }

private Q_SLOTS:
    void thirtySecondsBeforeTheRefreshAnUnchangedScreenIsSkipped()
    {
        RecorderRig rig;
        rig.preferences.setUnchangedRefreshMinutes(10);
        rig.start();
        for (int pass = 1; pass < 20; ++pass) {
            rig.nextPass();
            QCOMPARE(rig.recorder->status(), u"Skipped an unchanged screen"_s);
        }
        QCOMPARE(rig.saved().size(), 1);
        rig.nextPass(); // 600 seconds to the second
        QCOMPARE(rig.saved().size(), 2);
    }

    void theRefreshOfAnIdenticalScreenReadsNothingAgain_data() { everyMode(); }
    void theRefreshOfAnIdenticalScreenReadsNothingAgain()
    {
        QFETCH(QString, mode);
        RecorderRig rig;
        rig.preferences.setChangeMode(mode);
        rig.preferences.setUnchangedRefreshMinutes(5);
        rig.start();
        rig.recognizer.setLines({u"something else"_s});
        rig.preferences.setInterval(300);
        rig.nextPass(); // the 30 seconds under way
        rig.nextPass();
        const auto saved = rig.saved();
        QCOMPARE(saved.size(), 2);
        QCOMPARE(rig.recognizer.readings(), 1);
        QCOMPARE(saved[0].text, u"first line\nsecond line"_s);
        QVERIFY(saved[0].id != saved[1].id);
        QVERIFY(saved[0].timestamp > saved[1].timestamp);
        QVERIFY(saved[0].filename != saved[1].filename);
    }

    void whatWasNotReadToItsEndIsReadAgainAtTheRefresh()
    {
        RecorderRig rig;
        rig.preferences.setUnchangedRefreshMinutes(0.5);
        rig.recognizer.setWhole(false);
        rig.start();
        QCOMPARE(rig.saved().first().text, u"first line\nsecond line"_s);
        rig.recognizer.setLines({u"first line"_s, u"second line"_s, u"third line"_s});
        rig.nextPass();
        QCOMPARE(rig.recognizer.readings(), 2);
        QCOMPARE(rig.saved().first().text, u"first line\nsecond line\nthird line"_s);
        rig.recognizer.setWhole(true);
        rig.nextPass();
        QCOMPARE(rig.recognizer.readings(), 3);
        // From now on it is known what the screen says.
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 4);
        QCOMPARE(rig.recognizer.readings(), 3);
    }

    void aScreenUnchangedButForWhatMovesIsReadAtTheRefresh()
    {
        RecorderRig rig;
        rig.preferences.setChangeMode(u"obvious"_s);
        rig.preferences.setUnchangedRefreshMinutes(0.5);
        rig.start();
        rig.drawBlock(QRect(0, 0, 2, 2));
        rig.recognizer.setLines({u"something else"_s});
        rig.nextPass();
        QCOMPARE(rig.saved().first().text, u"something else"_s);
        QCOMPARE(rig.recognizer.readings(), 2);
    }

    void whatCountsAsAChangeIsChosen_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QSize>("block");
        QTest::addColumn<bool>("isSaved");
        // The picture is 192 by 192, so that a pixel is a cell.
        QTest::newRow("any: one cell") << u"any"_s << QSize(1, 1) << true;
        QTest::newRow("any: none") << u"any"_s << QSize(0, 0) << false;
        QTest::newRow("unknown: one cell") << u"sometimes"_s << QSize(1, 1) << true;
        QTest::newRow("empty: one cell") << u""_s << QSize(1, 1) << true;
        QTest::newRow("flicker: one cell") << u"flicker"_s << QSize(1, 1) << true;
        QTest::newRow("flicker: none") << u"flicker"_s << QSize(0, 0) << false;
        QTest::newRow("obvious: 60 cells") << u"obvious"_s << QSize(10, 6) << false;
        QTest::newRow("obvious: 61 cells") << u"obvious"_s << QSize(61, 1) << true;
    }
    void whatCountsAsAChangeIsChosen()
    {
        QFETCH(QString, mode);
        QFETCH(QSize, block);
        QFETCH(bool, isSaved);
        RecorderRig rig;
        makeSmall(rig);
        rig.preferences.setChangeMode(mode);
        rig.start();
        if (!block.isEmpty())
            rig.drawBlock(QRect(QPoint(3, 3), block));
        rig.nextPass();
        QCOMPARE(rig.saved().size(), isSaved ? 2 : 1);
        // A skip reads nothing, also where cells have moved.
        QCOMPARE(rig.recognizer.readings(), isSaved ? 2 : 1);
        QCOMPARE(rig.recorder->status() == u"Skipped an unchanged screen"_s, !isSaved);
    }

    void onlyFlickerLeavesOutWhatHasSettled_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("isSaved");
        QTest::newRow("flicker") << u"flicker"_s << false;
        QTest::newRow("any") << u"any"_s << true;
        QTest::newRow("unknown") << u"sometimes"_s << true;
        QTest::newRow("in other letters") << u"Flicker"_s << true;
        QTest::newRow("empty") << u""_s << true;
    }
    void onlyFlickerLeavesOutWhatHasSettled()
    {
        QFETCH(QString, mode);
        QFETCH(bool, isSaved);
        RecorderRig rig;
        makeSmall(rig);
        // Before the caret begins: another mode learns afresh.
        rig.preferences.setChangeMode(mode);
        rig.start();
        blinkEightTimes(rig);
        QCOMPARE(rig.recorder->screensSeen().motion.restless(), std::int64_t{4});
        const qsizetype learnt = isSaved ? 9 : kSavedUntilLearnt;
        QCOMPARE(rig.saved().size(), learnt);
        blinkEightTimes(rig);
        QCOMPARE(rig.saved().size(), learnt + (isSaved ? 8 : 0));
    }

    void aCaretIsLearntAndThenLeftOut()
    {
        RecorderRig rig;
        makeSmall(rig);
        rig.start();
        blinkEightTimes(rig);
        QCOMPARE(rig.saved().size(), kSavedUntilLearnt);
        blinkEightTimes(rig);
        QCOMPARE(rig.saved().size(), kSavedUntilLearnt);
        rig.drawBlock(QRect(90, 90, 1, 1));
        rig.nextPass();
        QCOMPARE(rig.saved().size(), kSavedUntilLearnt + 1);
    }

    void theRefreshReadsAlsoWhereOnlyACaretIsInItsOtherState()
    {
        RecorderRig rig;
        makeSmall(rig);
        rig.preferences.setUnchangedRefreshMinutes(5);
        rig.start();
        blinkEightTimes(rig);
        QCOMPARE(rig.saved().size(), kSavedUntilLearnt);
        QCOMPARE(rig.recognizer.readings(), static_cast<int>(kSavedUntilLearnt));
        // The last picture saved is without it.
        rig.drawBlock(kCaret);
        rig.nextPass();
        QCOMPARE(rig.recorder->status(), u"Skipped an unchanged screen"_s);
        rig.recognizer.setLines({u"read again"_s});
        rig.preferences.setUnchangedRefreshMinutes(0.5);
        rig.nextPass();
        QCOMPARE(rig.recognizer.readings(), static_cast<int>(kSavedUntilLearnt) + 1);
        QCOMPARE(rig.saved().first().text, u"read again"_s);
    }

    void amongObviousChangesWhatMovesOnItsOwnCountsToo()
    {
        RecorderRig rig;
        makeSmall(rig);
        rig.preferences.setChangeMode(u"obvious"_s);
        rig.start();
        blinkEightTimes(rig);
        QCOMPARE(rig.recorder->screensSeen().motion.restless(), std::int64_t{4});
        QCOMPARE(rig.saved().size(), 1);
        // With the caret 61 cells.
        rig.drawBlock(kCaret);
        rig.drawBlock(QRect(100, 100, 57, 1));
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 2);
    }

    void aSlowDriftAddsUpAndIsCaught_data()
    {
        QTest::addColumn<QString>("mode");
        for (const char* mode : {"flicker", "any"})
            QTest::newRow(mode) << QString::fromLatin1(mode);
    }
    void aSlowDriftAddsUpAndIsCaught()
    {
        QFETCH(QString, mode);
        RecorderRig rig;
        makeSmall(rig, QColor(100, 100, 100));
        rig.preferences.setChangeMode(mode);
        rig.start();
        // No step is more than what counts as the same; the third is, since the picture saved.
        for (int step = 1; step <= 6; ++step) {
            rig.drawBlock(QRect(40, 40, 1, 1), QColor(100 + step, 100 + step, 100 + step));
            rig.nextPass();
            QCOMPARE(rig.saved().size(), 1 + step / 3);
        }
    }

    void withTheSkippingOffEveryPassSavesAndReads()
    {
        RecorderRig rig;
        rig.preferences.setSkipsUnchangedScreens(false);
        rig.start();
        rig.nextPass();
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 3);
        QCOMPARE(rig.recognizer.readings(), 3);
        QVERIFY(!rig.recorder->screensSeen().lastScreen);
        QVERIFY(!rig.recorder->screensSeen().lastChecked);
    }

    void withoutALastScreenThePictureIsRead_data() { everyMode(); }
    void withoutALastScreenThePictureIsRead()
    {
        QFETCH(QString, mode);
        RecorderRig rig;
        rig.preferences.setChangeMode(mode);
        rig.start();
        rig.preferences.setSkipsUnchangedScreens(false);
        rig.preferences.setSkipsUnchangedScreens(true);
        rig.recognizer.setLines({u"read again"_s});
        rig.nextPass();
        QCOMPARE(rig.saved().first().text, u"read again"_s);
    }
};

QTEST_GUILESS_MAIN(UnchangedScreenTest)
#include "UnchangedScreenTest.moc"

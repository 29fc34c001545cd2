// SPDX-License-Identifier: Apache-2.0
//
// What a capture pass asks for and what it files.
#include "tests/Model/RecorderRig.h"

#include <QRegularExpression>

using namespace mossbank;
using namespace Qt::StringLiterals;

class CapturePassTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRecordTellsWhatWasThere()
    {
        RecorderRig rig;
        const Date taken = rig.clock.now();
        // The date is that of the moment before the picture, not of its end.
        rig.screen.onPicture = [&] {
            rig.clock.setNow(rig.clock.now() + 7);
        };
        rig.start();
        QCOMPARE(rig.recorder->screensSeen().lastScreenSavedAt, taken);
        const Memory memory = rig.saved().first();
        QVERIFY(QRegularExpression(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s)
                    .match(memory.id)
                    .hasMatch());
        QCOMPARE(memory.timestamp, taken);
        QCOMPARE(memory.appName, u"Editor"_s);
        QCOMPARE(memory.bundleID, u"org.example.Editor"_s);
        QCOMPARE(memory.text, u"first line\nsecond line"_s);
        QCOMPARE(memory.filename, memory.id + u".jpg"_s);
        QCOMPARE(memory.title, u"letter.txt"_s);
        QCOMPARE(memory.link, QString());
        const QFileInfo file(rig.store->images() + u'/' + memory.filename);
        QCOMPARE(memory.bytes, file.size());
        const auto jpeg = ImageVault::picture(file.filePath(), rig.vault);
        QVERIFY(jpeg);
        QCOMPARE(jpeg->size(), file.size() - 32);
        QCOMPARE(QImage::fromData(*jpeg).size(), QSize(320, 200));
        QCOMPARE(rig.recorder->status(), u"Saved at 22:13:27"_s);
    }

    void anApplicationWithoutANameIsFiledUnderItsIdentity()
    {
        RecorderRig rig;
        rig.front.setCurrent(Application{.bundleID = RecorderRig::kEditor.bundleID, .name = {}});
        rig.start();
        QCOMPARE(rig.saved().first().appName, u"org.example.Editor"_s);
    }

    void theFrontWindowIsTheLargestOrdinaryOneOnScreen()
    {
        RecorderRig rig;
        const auto make = [](const Application& owner, const QRect& frame, const QString& title) {
            return RecorderRig::window(owner, frame, title);
        };
        ScreenWindow hidden = make(RecorderRig::kEditor, QRect(0, 0, 319, 199), u"hidden"_s);
        hidden.isOnScreen = false;
        ScreenWindow menu = make(RecorderRig::kEditor, QRect(0, 0, 318, 199), u"menu"_s);
        menu.layer = 101;
        rig.screen.contentNow.windows = {
            hidden,
            menu,
            make(RecorderRig::kOther, QRect(0, 0, 320, 200), u"another's"_s),
            make(RecorderRig::kEditor, QRect(0, 0, 50, 50), u"small"_s),
            make(RecorderRig::kEditor, QRect(0, 0, 100, 100), u"large"_s),
            make(RecorderRig::kEditor, QRect(9, 9, 100, 100), u"as large, further back"_s),
            {.owners = {}, .title = u"nobody's"_s, .frame = QRect(0, 0, 320, 200)},
        };
        rig.start();
        QCOMPARE(rig.saved().first().title, u"large"_s);
    }

    void withoutAWindowTheTitleIsEmpty()
    {
        RecorderRig rig;
        rig.screen.contentNow.windows.clear();
        rig.start();
        QCOMPARE(rig.saved().first().title, QString());
    }

    void aTitleOfAMegabyteIsCut()
    {
        RecorderRig rig;
        rig.screen.contentNow.windows = {
            RecorderRig::window(RecorderRig::kEditor, QRect(0, 0, 9, 9), QString(1'000'000, u'x'))};
        rig.start();
        QCOMPARE(rig.saved().first().title, QString(160, u'x'));
    }

    void theDisplayIsTheOneWithMostOfTheFrontWindow_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<DisplayID>("display");
        QTest::newRow("on the first") << QRect(0, 0, 100, 100) << DisplayID(1);
        QTest::newRow("mostly on the second") << QRect(280, 0, 100, 100) << DisplayID(2);
        QTest::newRow("half and half") << QRect(270, 0, 100, 100) << DisplayID(1);
        QTest::newRow("on none: the main one") << QRect(0, 900, 100, 100) << DisplayID(2);
        QTest::newRow("no window: the main one") << QRect() << DisplayID(2);
    }
    void theDisplayIsTheOneWithMostOfTheFrontWindow()
    {
        QFETCH(QRect, window);
        QFETCH(DisplayID, display);
        RecorderRig rig;
        rig.screen.contentNow.displays = {{.id = 1, .frame = QRect(0, 0, 320, 200)},
                                          {.id = 2, .frame = QRect(320, 0, 320, 200)}};
        rig.screen.contentNow.mainDisplay = 2;
        rig.screen.contentNow.windows.clear();
        if (window.isValid())
            rig.screen.contentNow.windows = {RecorderRig::window(RecorderRig::kEditor, window)};
        rig.start();
        QCOMPARE(rig.screen.requests.front().display, display);
    }

    void oneDisplayIsTakenWhereverTheWindowLies()
    {
        RecorderRig rig;
        rig.screen.contentNow.windows = {
            RecorderRig::window(RecorderRig::kEditor, QRect(5000, 0, 10, 10))};
        rig.start();
        QCOMPARE(rig.screen.requests.front().display, DisplayID(1));
    }

    void aSingleDisplayThatIsNotTheMainOneIsNone()
    {
        RecorderRig rig;
        rig.screen.contentNow.mainDisplay = 7;
        rig.start();
        QVERIFY(!rig.recorder->isRecording());
        QVERIFY(rig.recorder->errorMessage()->contains(u"No display is available."_s));
    }

    void anExcludedWindowOnAnotherDisplaySkipsThePass()
    {
        RecorderRig rig;
        rig.screen.contentNow.displays.append({.id = 2, .frame = QRect(320, 0, 320, 200)});
        rig.screen.contentNow.windows.append(
            RecorderRig::window(RecorderRig::kSecret, QRect(400, 0, 10, 10)));
        rig.start();
        QCOMPARE(rig.recorder->status(), u"Skipped: an excluded app is visible"_s);
        rig.screen.contentNow.windows.last().isOnScreen = false;
        rig.nextPass();
        QCOMPARE(rig.saved().size(), 1);
    }

    void anotherDisplayIsAnotherScreen()
    {
        RecorderRig rig;
        rig.start();
        rig.drawBlock(QRect(0, 0, 2, 2));
        rig.nextPass();
        const auto saved = rig.recorder->screensSeen().lastScreen;
        QVERIFY(!rig.recorder->screensSeen().motion.sightings.empty());
        rig.screen.contentNow.displays = {{.id = 9, .frame = QRect(0, 0, 320, 200)}};
        rig.screen.contentNow.mainDisplay = 9;
        rig.nextPass();
        QVERIFY(rig.recorder->screensSeen().motion.sightings.empty());
        QCOMPARE(rig.recorder->screensSeen().lastScreen, saved);
        QCOMPARE(rig.recorder->status(), u"Skipped an unchanged screen"_s);
    }

    void anApplicationExcludedByAnyOfItsNamesIsExcluded_data()
    {
        QTest::addColumn<QString>("excluded");
        QTest::newRow("its identity") << u"org.example.Editor"_s;
        QTest::newRow("in other letters") << u"ORG.example.editor"_s;
        QTest::newRow("what it runs from") << u"editor-bin"_s;
    }
    void anApplicationExcludedByAnyOfItsNamesIsExcluded()
    {
        QFETCH(QString, excluded);
        RecorderRig rig;
        Application editor = RecorderRig::kEditor;
        editor.aliases = {u"editor-bin"_s};
        rig.preferences.setExcludedBundles({excluded});
        rig.front.setCurrent(editor);
        rig.start();
        QCOMPARE(rig.recorder->status(), u"Skipped an excluded app"_s);

        rig.front.setCurrent(RecorderRig::kOther);
        rig.screen.contentNow.windows = {
            RecorderRig::window(RecorderRig::kOther, QRect(0, 0, 99, 99)),
            RecorderRig::window(editor, QRect(0, 0, 9, 9))};
        rig.nextPass();
        QCOMPARE(rig.recorder->status(), u"Skipped: an excluded app is visible"_s);

        rig.screen.contentNow.windows.removeLast();
        rig.screen.contentNow.applications = {RecorderRig::kEditor, editor, RecorderRig::kOther};
        rig.nextPass();
        QCOMPARE(rig.screen.requests.front().included, QStringList{RecorderRig::kOther.bundleID});
    }

    void onlyWhatMayBeInThePictureIsAskedFor()
    {
        RecorderRig rig;
        rig.screen.contentNow.applications = {RecorderRig::kEditor, RecorderRig::kSecret,
                                              RecorderRig::kMossbank, RecorderRig::kOther};
        rig.start();
        QCOMPARE(rig.screen.requests.front().included,
                 (QStringList{RecorderRig::kEditor.bundleID, RecorderRig::kOther.bundleID}));
        QCOMPARE(rig.screen.requests.front().excluded,
                 (QStringList{RecorderRig::kSecret.bundleID, RecorderRig::kMossbank.bundleID}));
    }

    void thePictureIsNeverWiderThan2048_data()
    {
        QTest::addColumn<QSize>("display");
        QTest::addColumn<QSize>("picture");
        QTest::newRow("narrow") << QSize(320, 200) << QSize(320, 200);
        QTest::newRow("just so") << QSize(2048, 1152) << QSize(2048, 1152);
        QTest::newRow("one more") << QSize(2049, 1153) << QSize(2048, 1152);
        QTest::newRow("4K") << QSize(3840, 2160) << QSize(2048, 1152);
        QTest::newRow("on its side") << QSize(1080, 3840) << QSize(1080, 3840);
        QTest::newRow("a ribbon") << QSize(40'000, 9) << QSize(2048, 1);
    }
    void thePictureIsNeverWiderThan2048()
    {
        QFETCH(QSize, display);
        QFETCH(QSize, picture);
        RecorderRig rig;
        rig.screen.contentNow.displays = {{.id = 1, .frame = QRect(QPoint(), display)}};
        rig.start();
        QCOMPARE(rig.screen.requests.front().size, picture);
    }

    void aBrowserIsAskedForItsAddress_data()
    {
        QTest::addColumn<bool>("savesAddresses");
        QTest::addColumn<bool>("isKnown");
        QTest::addColumn<bool>("hasName");
        QTest::newRow("a known browser") << true << true << true;
        QTest::newRow("without a name") << true << true << false;
        QTest::newRow("turned off") << false << true << true;
        QTest::newRow("no browser") << true << false << true;
    }
    void aBrowserIsAskedForItsAddress()
    {
        QFETCH(bool, savesAddresses);
        QFETCH(bool, isKnown);
        QFETCH(bool, hasName);
        RecorderRig rig;
        Application browser = RecorderRig::kEditor;
        if (!hasName)
            browser.name.clear();
        rig.front.setCurrent(browser);
        rig.preferences.setSavesAddresses(savesAddresses);
        if (isKnown)
            rig.addresses.browsers = {browser.bundleID};
        rig.addresses.answerNow = AddressAnswer::answered(u"https://example.org/page?x=1"_s);
        rig.start();
        const bool isAsked = savesAddresses && isKnown;
        QCOMPARE(rig.addresses.asked, isAsked ? QStringList{browser.bundleID} : QStringList());
        QCOMPARE(rig.saved().first().link, isAsked ? u"https://example.org/page?x=1"_s : QString());
        rig.addresses.answerNow = AddressAnswer::refused();
        rig.drawBlock(QRect(0, 0, 200, 100));
        rig.nextPass();
        QCOMPARE(rig.saved().first().link, QString());
        const QString name = hasName ? u"Editor"_s : u"org.example.Editor"_s;
        QCOMPARE(rig.recorder->refusedBrowsers(), isAsked ? QStringList{name} : QStringList());
    }

    void anAddressThatCannotBeHadLeavesTheLinkEmpty()
    {
        RecorderRig rig;
        rig.addresses.browsers = {RecorderRig::kEditor.bundleID};
        rig.start();
        QCOMPARE(rig.saved().first().link, QString());
    }

    void thePassWaitsForTheAddress()
    {
        RecorderRig rig;
        rig.addresses.browsers = {RecorderRig::kEditor.bundleID};
        rig.addresses.answerNow = AddressAnswer::answered(u"https://example.org/late"_s);
        rig.addresses.holdsAnswers = true;
        rig.recorder->toggleRecording();
        // The reading goes on side by side with the question.
        QTRY_COMPARE(rig.recognizer.readings(), 1);
        QVERIFY(rig.recorder->isSaving());
        QTest::qWait(20);
        QCOMPARE(rig.saved().size(), 0);
        rig.addresses.release();
        rig.settle();
        QCOMPARE(rig.saved().first().link, u"https://example.org/late"_s);
    }

    void aSwitchOfApplicationDuringTheReadingDropsThePicture_data()
    {
        QTest::addColumn<bool>("toNobody");
        QTest::newRow("to another application") << false;
        QTest::newRow("to none") << true;
    }
    void aSwitchOfApplicationDuringTheReadingDropsThePicture()
    {
        QFETCH(bool, toNobody);
        RecorderRig rig;
        rig.start();
        const auto saved = rig.recorder->screensSeen().lastScreen;
        rig.drawBlock(QRect(0, 0, 100, 100));
        rig.recognizer.setHook([&] {
            rig.front.setCurrent(toNobody ? std::nullopt : std::optional(RecorderRig::kOther));
        });
        rig.nextPass();
        QCOMPARE(rig.recorder->status(), u"Skipped a screen during an app switch"_s);
        QCOMPARE(rig.saved().size(), 1);
        QCOMPARE(rig.recorder->screensSeen().lastScreen, saved);
        QVERIFY(rig.recorder->screensSeen().lastChecked != saved);
        QVERIFY(!rig.recorder->isSaving());
        QVERIFY(!rig.recorder->isCapturing());
    }

    void anExclusionAddedDuringTheReadingDropsThePictureWithoutAWord()
    {
        RecorderRig rig;
        QSemaphore reading;
        rig.recognizer.setHook([&] { reading.acquire(); });
        rig.recorder->toggleRecording();
        QTRY_COMPARE(rig.recognizer.readings(), 1);
        rig.preferences.setExcludedBundles({RecorderRig::kEditor.bundleID});
        reading.release();
        rig.settle();
        QCOMPARE(rig.saved().size(), 0);
        QCOMPARE(rig.recorder->status(), u"Waiting for your next screen"_s);
        QVERIFY(!rig.recorder->isSaving());
    }

    void aStopDuringTheSaveLetsTheRecordStand()
    {
        RecorderRig rig;
        rig.sealing.hold();
        rig.recorder->toggleRecording();
        QTRY_VERIFY(rig.sealing.isHolding());
        QVERIFY(rig.recorder->isSaving());
        rig.recorder->stop();
        rig.sealing.release();
        QTRY_VERIFY(!rig.recorder->isCapturing());
        QCOMPARE(rig.saved().size(), 1);
        QCOMPARE(rig.recorder->status(), u"Recording is off"_s);
        QVERIFY(!rig.recorder->isSaving());
        QCOMPARE(rig.afterSave.calls,
                 (QStringList{u"readForMeaning"_s, u"applyRetention"_s, u"refresh"_s}));
        QVERIFY(rig.recorder->screensSeen().lastScreen);
    }

    void whatFollowsASaveIsDoneInOrderAndOnlyThen()
    {
        RecorderRig rig;
        rig.start();
        QCOMPARE(rig.afterSave.calls,
                 (QStringList{u"readForMeaning"_s, u"applyRetention"_s, u"refresh"_s}));
        QCOMPARE(rig.afterSave.read.first().id, rig.saved().first().id);
        rig.nextPass();
        QCOMPARE(rig.afterSave.calls.size(), 3);
    }

    void thePictureIsEncodedInTheChosenQuality()
    {
        RecorderRig rig;
        for (int stripe = 0; stripe < 300; stripe += 3)
            rig.drawBlock(QRect(stripe, 0, 1, 190), QColor::fromHsv(stripe, 255, 200));
        rig.preferences.setImageQuality(0.95);
        rig.start();
        rig.preferences.setImageQuality(0.4);
        rig.preferences.setSkipsUnchangedScreens(false);
        rig.nextPass();
        const auto saved = rig.saved();
        QVERIFY(saved[0].bytes < saved[1].bytes);
    }
};

QTEST_GUILESS_MAIN(CapturePassTest)
#include "CapturePassTest.moc"

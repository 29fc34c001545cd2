// SPDX-License-Identifier: Apache-2.0
//
// Putting applications on the list of those that are never recorded.
#include "Mossbank/Model/AppModel.h"
#include "tests/Model/RecorderRig.h"

using namespace mossbank;
using namespace Qt::StringLiterals;

class ExclusionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_model.reset();
        m_rig = std::make_unique<RecorderRig>(false);
        m_rig->preferences.setExcludedBundles({RecorderRig::kSecret.bundleID});
        m_model = std::make_unique<AppModel>(m_rig->surroundings(),
                                             OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
        m_model->finishedLaunching();
    }

    void cleanup()
    {
        m_model.reset();
        m_rig.reset();
    }

    void theApplicationInFrontIsExcluded()
    {
        m_model->exclusions().excludeFrontmostApp();
        QCOMPARE(excluded(),
                 (QStringList{RecorderRig::kSecret.bundleID, RecorderRig::kEditor.bundleID}));
        QCOMPARE(status(), u"Excluded Editor — no new screenshots of it"_s);
        QCOMPARE(Preferences(m_rig->preferences.path()).excludedBundles(), excluded());
    }

    void fromThisApplicationTheLastOneIsExcluded()
    {
        m_rig->front.activate(RecorderRig::kOther);
        m_rig->front.activate(RecorderRig::kMossbank);
        QCOMPARE(m_model->exclusions().lastActiveApp(),
                 std::optional(ActiveApp{RecorderRig::kOther.bundleID, u"Other"_s}));
        m_model->exclusions().excludeFrontmostApp();
        QCOMPARE(excluded().last(), RecorderRig::kOther.bundleID);
        QCOMPARE(status(), u"Excluded Other — no new screenshots of it"_s);
    }

    void whenTheDesktopHasGoneTheLastOneIsExcluded()
    {
        m_rig->front.activate(RecorderRig::kOther);
        m_rig->front.failure = u"The X server has gone."_s;
        m_model->exclusions().excludeFrontmostApp();
        QCOMPARE(excluded().last(), RecorderRig::kOther.bundleID);
    }

    void theOneInFrontAtTheStartIsTheLastOne()
    {
        m_rig->front.setCurrent(RecorderRig::kMossbank);
        QCOMPARE(m_model->exclusions().lastActiveApp(),
                 std::optional(ActiveApp{RecorderRig::kEditor.bundleID, u"Editor"_s}));
    }

    void anApplicationWithoutANameGoesByItsIdentity()
    {
        m_rig->front.activate({u"org.example.Nameless"_s, QString()});
        QCOMPARE(m_model->exclusions().lastActiveApp(),
                 std::optional(ActiveApp{u"org.example.Nameless"_s, u"org.example.Nameless"_s}));
        m_model->exclusions().excludeFrontmostApp();
        QCOMPARE(status(), u"Excluded org.example.Nameless — no new screenshots of it"_s);
    }

    void anIdentityThatLooksLikeAFileOutlivesARestart()
    {
        const Application vault{u"com.bitwarden.desktop"_s, u"Vault"_s};
        m_rig->front.activate(vault);
        m_model->exclusions().excludeFrontmostApp();
        QVERIFY(vault.isAmong(Preferences(m_rig->preferences.path()).excludedBundles()));
    }

    void theNameOfItsFileExcludesItAsWell_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<bool>("isExcluded");
        QTest::newRow("its file") << u"org.example.Wren.desktop"_s << true;
        QTest::newRow("in other letters") << u"Org.Example.Wren.Desktop"_s << true;
        QTest::newRow("another's") << u"org.example.Wren2.desktop"_s << false;
    }
    void theNameOfItsFileExcludesItAsWell()
    {
        QFETCH(QString, written);
        QFETCH(bool, isExcluded);
        const Application wren{u"org.example.Wren"_s, u"Wren"_s};
        QCOMPARE(wren.isAmong({written}), isExcluded);
    }

    void whatIsExcludedIsNotExcludedAgain_data()
    {
        QTest::addColumn<QString>("bundleID");
        QTest::newRow("as it stands") << RecorderRig::kSecret.bundleID;
        QTest::newRow("in other letters") << RecorderRig::kSecret.bundleID.toUpper();
        QTest::newRow("by another name of it") << u"org.example.Disguised"_s;
    }
    void whatIsExcludedIsNotExcludedAgain()
    {
        QFETCH(QString, bundleID);
        m_rig->front.activate({bundleID, u"Secret"_s, {RecorderRig::kSecret.bundleID}});
        m_model->exclusions().excludeFrontmostApp();
        QCOMPARE(excluded(), QStringList{RecorderRig::kSecret.bundleID});
        QCOMPARE(status(), u"Secret is already excluded"_s);
    }

    void withNothingInFrontItSaysWhatToDo_data()
    {
        QTest::addColumn<bool>("isMossbank");
        QTest::newRow("nothing") << false;
        QTest::newRow("this application") << true;
    }
    void withNothingInFrontItSaysWhatToDo()
    {
        QFETCH(bool, isMossbank);
        m_model.reset();
        m_rig->front.setCurrent(isMossbank ? std::optional(RecorderRig::kMossbank) : std::nullopt);
        m_model = std::make_unique<AppModel>(m_rig->surroundings(),
                                             OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
        m_model->finishedLaunching();
        m_model->exclusions().excludeFrontmostApp();
        QCOMPARE(excluded(), QStringList{RecorderRig::kSecret.bundleID});
        QCOMPARE(status(), u"Switch to the app you want excluded, then try again"_s);
    }

    void anUnknownWindowInFrontIsNotTheLastOne()
    {
        m_rig->front.activate({QString(), u"Somebody"_s});
        QCOMPARE(m_model->exclusions().lastActiveApp(),
                 std::optional(ActiveApp{RecorderRig::kEditor.bundleID, u"Editor"_s}));
    }

    void anUnknownWindowInFrontHasTheLastOneExcluded()
    {
        m_rig->front.setCurrent(Application{QString(), u"Somebody"_s});
        m_model->exclusions().excludeFrontmostApp();
        QCOMPARE(excluded().last(), RecorderRig::kEditor.bundleID);
        QCOMPARE(status(), u"Excluded Editor — no new screenshots of it"_s);
    }

    void whatIsSavedAlreadyStays()
    {
        m_model->recorder().toggleRecording();
        QTRY_COMPARE(m_model->store()->fetch({.limit = 10}).result().size(), 1);
        QTRY_VERIFY(!m_model->recorder().isCapturing());
        m_model->recorder().stop();
        m_model->exclusions().excludeFrontmostApp();
        QCOMPARE(excluded().last(), RecorderRig::kEditor.bundleID);
        QTest::qWait(50);
        const auto saved = m_model->store()->fetch({.limit = 10}).result();
        QCOMPARE(saved.size(), 1);
        QCOMPARE(saved.first().appName, u"Editor"_s);
        QVERIFY(QFile::exists(m_rig->libraryRoot() + u"/Images/"_s + saved.first().filename));
    }

    void aPassUnderWayIsDropped()
    {
        m_rig->screen.holdsPicture = true;
        m_model->recorder().toggleRecording();
        QTRY_COMPARE(m_rig->screen.requests.size(), std::size_t(1));
        m_model->exclusions().excludeFrontmostApp();
        m_rig->screen.releasePicture();
        QTRY_VERIFY(!m_model->recorder().isCapturing());
        QCOMPARE(m_model->store()->fetch({.limit = 10}).result().size(), 0);
        QCOMPARE(status(), u"Excluded Editor — no new screenshots of it"_s);
    }

    void aChosenApplicationIsExcluded()
    {
        m_rig->applicationChooser.choiceNow = RecorderRig::kOther;
        m_model->exclusions().addExcludedApp();
        QTRY_COMPARE(excluded().last(), RecorderRig::kOther.bundleID);
        QCOMPARE(m_rig->applicationChooser.titles, QStringList{u"Exclude an application"_s});
    }

    void whoChoosesNothingNewExcludesNothing_data()
    {
        QTest::addColumn<QString>("bundleID");
        QTest::addColumn<QString>("failure");
        QTest::newRow("nothing") << QString() << QString();
        QTest::newRow("an excluded one") << RecorderRig::kSecret.bundleID << QString();
        QTest::newRow("the chooser fails") << RecorderRig::kOther.bundleID << u"gone"_s;
    }
    void whoChoosesNothingNewExcludesNothing()
    {
        QFETCH(QString, bundleID);
        QFETCH(QString, failure);
        const QString before = status();
        if (!bundleID.isEmpty())
            m_rig->applicationChooser.choiceNow = Application{bundleID, u"Chosen"_s};
        m_rig->applicationChooser.failure = failure;
        m_model->exclusions().addExcludedApp();
        QTRY_COMPARE(m_rig->applicationChooser.titles.size(), 1);
        QTest::qWait(5);
        QCOMPARE(excluded(), QStringList{RecorderRig::kSecret.bundleID});
        QCOMPARE(status(), before);
    }

    void oneChoosesOneAtATime()
    {
        m_rig->applicationChooser.holds = true;
        m_rig->applicationChooser.choiceNow = RecorderRig::kOther;
        m_model->exclusions().addExcludedApp();
        QTRY_COMPARE(m_rig->applicationChooser.titles.size(), 1);
        m_model->exclusions().addExcludedApp();
        QTest::qWait(5);
        QCOMPARE(m_rig->applicationChooser.titles.size(), 1);
        m_rig->applicationChooser.release();
        QTRY_COMPARE(excluded().size(), 2);
    }

    void whoChoosesWhenAllIsOverExcludesNothing()
    {
        m_rig->applicationChooser.holds = true;
        m_rig->applicationChooser.choiceNow = RecorderRig::kOther;
        m_model->exclusions().addExcludedApp();
        QTRY_COMPARE(m_rig->applicationChooser.titles.size(), 1);
        m_model.reset();
        m_rig->applicationChooser.release();
        QTest::qWait(5);
        QCOMPARE(excluded(), QStringList{RecorderRig::kSecret.bundleID});
    }

private:
    QStringList excluded() const { return m_rig->preferences.excludedBundles(); }
    QString status() const { return m_model->recorder().status(); }

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<AppModel> m_model;
};

QTEST_GUILESS_MAIN(ExclusionsTest)
#include "ExclusionsTest.moc"

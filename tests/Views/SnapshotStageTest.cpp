// SPDX-License-Identifier: Apache-2.0
//
// The state that the command line asks for is the one that is set.
#include "Mossbank/Views/Snapshot/SnapshotStage.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Views/Snapshot/Snapshot.h"
#include "tests/Model/RecorderRig.h"

using namespace mossbank;
using namespace Qt::StringLiterals;
using Lens = Listing::Lens;

namespace {

constexpr Date kNoon = {1'700'049'600};
constexpr Date kToday = {1'700'006'400};
constexpr double kADay = 86'400;

} // namespace

class SnapshotStageTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<RecorderRig> m_rig;
    std::unique_ptr<Preferences> m_choices;
    std::unique_ptr<AppModel> m_model;
    QStringList m_set;
    QString m_path;

    Listing& listing() { return m_model->listing(); }

    SnapshotStage stage()
    {
        return {.showText = [this] { m_set.append(u"text"_s); },
                .zoomTimeline = [this](double scale) { m_set.append(u"zoom %1"_s.arg(scale)); },
                .ask = [this](const QString& question) { m_set.append(u"ask "_s + question); },
                .searchByMeaning = [this] { m_set.append(u"by meaning"_s); },
                .showSettings =
                    [this](const QString& section) {
                        m_set.append(u"settings "_s + section);
                    }};
    }

    void prepare(const QStringList& arguments, const SnapshotStage& stage)
    {
        const QStringList all = {u"mossbank"_s, u"--snapshot"_s, m_path};
        const Snapshot snapshot(SnapshotOptions(all + arguments), m_rig->clock, m_rig->appearance);
        prepareWorkspace(snapshot, *m_model, stage);
    }

    QString notes() const
    {
        QFile file(m_path + u".log"_s);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

private Q_SLOTS:
    void init()
    {
        m_rig = std::make_unique<RecorderRig>(false);
        m_rig->clock.setNow(kNoon);
        m_choices = std::make_unique<Preferences>(Preferences::Sample{});
        m_model = std::make_unique<AppModel>(m_rig->surroundings(*m_choices),
                                             OpenedLibrary::at(m_rig->libraryRoot(), nullptr));
        m_set.clear();
        m_path = m_rig->folder.filePath(u"a.png"_s);
    }
    void cleanup()
    {
        m_model.reset();
        m_choices.reset();
        m_rig.reset();
    }

    void unaskedNothingIsSet()
    {
        prepare({}, stage());
        QVERIFY(m_set.isEmpty());
        QCOMPARE(listing().day(), kToday);
        QCOMPARE(listing().query(), QString());
        QCOMPARE(listing().appFilter(), std::nullopt);
        QCOMPARE(listing().lens(), Lens::Moments);
        QVERIFY(!listing().showsEnlarged());
        QVERIFY(notes().isEmpty());
    }

    void theDay_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("isAllHistory");
        QTest::addColumn<int>("days");
        const QString day = u"--snapshot-day"_s;
        QTest::newRow("yesterday") << QStringList{day, u"-1"_s} << false << -1;
        QTest::newRow("four days ago") << QStringList{day, u"-4"_s} << false << -4;
        QTest::newRow("today") << QStringList{day, u"0"_s} << false << 0;
        QTest::newRow("none is to come") << QStringList{day, u"3"_s} << false << 0;
        QTest::newRow("all history")
            << QStringList{u"--snapshot-show"_s, u"all-history"_s} << true << 0;
        QTest::newRow("a day and all history")
            << QStringList{day, u"-1"_s, u"--snapshot-show"_s, u"all-history"_s} << true << 0;
    }
    void theDay()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, isAllHistory);
        QFETCH(int, days);
        prepare(arguments, stage());
        if (isAllHistory)
            QCOMPARE(listing().day(), std::nullopt);
        else
            QCOMPARE(listing().day(), kToday + days * kADay);
    }

    void theFilters()
    {
        prepare({u"--snapshot-query"_s, u"photographic"_s, u"--snapshot-app"_s, u"Notes"_s},
                stage());
        QCOMPARE(listing().query(), u"photographic"_s);
        QCOMPARE(listing().appFilter(), u"Notes"_s);
    }

    void theLens_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("lens");
        QTest::addColumn<QStringList>("set");
        QTest::newRow("timeline") << QStringList{u"--snapshot-show"_s, u"timeline"_s}
                                  << int(Lens::Timeline) << QStringList();
        QTest::newRow("zoomed") << QStringList{u"--snapshot-show"_s, u"timeline"_s,
                                               u"--snapshot-zoom"_s, u"2.5"_s}
                                << int(Lens::Timeline) << QStringList{u"zoom 2.5"_s};
        QTest::newRow("ask") << QStringList{u"--snapshot-ask"_s, u"Who was it?"_s} << int(Lens::Ask)
                             << QStringList{u"ask Who was it?"_s};
    }
    void theLens()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, lens);
        prepare(arguments, stage());
        QCOMPARE(int(listing().lens()), lens);
        QTEST(m_set, "set");
    }

    void theStates()
    {
        prepare({u"--snapshot-show"_s, u"text,enlarged,by-meaning"_s, u"--snapshot-settings"_s,
                 u"privacy"_s},
                stage());
        QVERIFY(listing().showsEnlarged());
        QCOMPARE(m_set, (QStringList{u"by meaning"_s, u"text"_s, u"settings privacy"_s}));
        QVERIFY(notes().isEmpty());
    }

    void whatCannotBeSetIsNoted()
    {
        prepare({u"--snapshot-show"_s, u"text"_s, u"--snapshot-zoom"_s, u"2"_s}, {});
        QCOMPARE(notes(), u"--snapshot-zoom: there is nothing to set it\n"
                          "text: there is nothing to set it\n"_s);
    }
};

QTEST_MAIN(SnapshotStageTest)
#include "SnapshotStageTest.moc"

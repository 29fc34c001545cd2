// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/Workspace.h"

#include "Mossbank/Model/Texts.h"
#include "Mossbank/Views/Workspace/Choice.h"
#include "tests/Views/WorkspaceRig.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

class WorkspaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<WorkspaceRig>(); }
    void cleanup()
    {
        m_workspace.reset();
        m_rig.reset();
    }

    // What fills the window

    void beforeTheLibraryHasAnsweredNobodyKnows()
    {
        show();
        QCOMPARE(m_workspace->content(), Workspace::Loading);
    }

    void withoutALibraryNobodyIsWaitedFor()
    {
        m_rig->model = std::make_unique<AppModel>(m_rig->surroundings(), OpenedLibrary());
        show();
        QCOMPARE(m_workspace->content(), Workspace::FirstRun);
    }

    void anEmptyLibraryIsAFirstRun()
    {
        open();
        QCOMPARE(m_workspace->content(), Workspace::FirstRun);
        m_workspace->setQuery(u"heron"_s);
        m_rig->settle();
        QCOMPARE(m_workspace->content(), Workspace::Empty);
    }

    void whatThereIsIsShown()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60, u"Editor"_s, u"a heron"_s);
        open();
        QCOMPARE(m_workspace->content(), Workspace::Moments);
        QCOMPARE(m_workspace->memories()->order(), MemoryRows::Order::OldestFirst);
        m_workspace->setQuery(u"heron"_s);
        m_rig->settle();
        QCOMPARE(m_workspace->content(), Workspace::Results);
        QCOMPARE(m_workspace->memories()->order(), MemoryRows::Order::NewestFirst);
        m_workspace->setQuery(u"wren"_s);
        m_rig->settle();
        QCOMPARE(m_workspace->content(), Workspace::Empty);
    }

    void aDayWithoutAnythingIsEmpty()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday - WorkspaceRig::kDay + 60);
        open();
        QCOMPARE(m_workspace->content(), Workspace::Empty);
        QCOMPARE(m_workspace->emptyState()->symbol(), u"calendar"_s);
    }

    // The ways on from nothing

    void anEmptyDayLeadsToTheNewestThatIsNot()
    {
        const Date day = WorkspaceRig::kToday - 2 * WorkspaceRig::kDay;
        m_rig->add(u"a"_s, day + 60);
        open();
        QCOMPARE(actions(), QStringList{u"Go to "_s + m_rig->calendar().shortMonthAndDay(day)});
        m_workspace->emptyState()->act(0);
        m_rig->settle();
        QCOMPARE(m_rig->listing().day(), std::optional(day));
        QCOMPARE(m_workspace->content(), Workspace::Moments);
    }

    void anApplicationWithoutAnythingIsLetGo()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday - WorkspaceRig::kDay + 60, u"Quill"_s);
        m_rig->add(u"b"_s, WorkspaceRig::kToday + 60);
        open();
        m_rig->listing().setAppFilter(u"Quill"_s);
        m_rig->settle();
        QCOMPARE(m_workspace->emptyState()->detail(), u"No Quill screenshots today."_s);
        QCOMPARE(actions(), QStringList{u"Stop showing only Quill"_s});
        QCOMPARE(helpOf(0), u"Show all applications"_s);
        m_workspace->emptyState()->act(0);
        QCOMPARE(m_rig->listing().appFilter(), std::nullopt);
    }

    void whatMatchesElsewhereIsFoundThere()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday - WorkspaceRig::kDay + 60, u"Editor"_s,
                   u"a heron"_s);
        open();
        m_workspace->setQuery(u"heron"_s);
        m_rig->settle();
        QCOMPARE(m_workspace->emptyState()->symbol(), u"search"_s);
        QCOMPARE(actions(), QStringList{u"Search all history"_s});
        m_workspace->emptyState()->act(0);
        m_rig->settle();
        QCOMPARE(m_workspace->content(), Workspace::Results);
    }

    void whatMatchesNowhereLeadsBackToAll()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60);
        open();
        m_rig->listing().setAppFilter(u"Editor"_s);
        m_workspace->setQuery(u"wren"_s);
        m_rig->settle();
        QCOMPARE(actions(), QStringList{u"Show all history"_s});
        m_workspace->emptyState()->act(0);
        m_rig->settle();
        QCOMPARE(m_workspace->query(), QString());
        QCOMPARE(m_rig->listing().day(), std::nullopt);
        QCOMPARE(m_rig->listing().appFilter(), std::nullopt);
        QCOMPARE(m_workspace->content(), Workspace::Moments);
    }

    void aButtonThatIsNotThereDoesNothing()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday - WorkspaceRig::kDay + 60);
        open();
        const auto day = m_rig->listing().day();
        m_workspace->emptyState()->act(1);
        m_workspace->emptyState()->act(-1);
        QCOMPARE(m_rig->listing().day(), day);
    }

    // The heading

    void itSaysWhichDayAndHowMany()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60);
        open();
        QCOMPARE(m_workspace->heading(), u"Today"_s);
        QCOMPARE(m_workspace->count(), u"1 moment"_s);
        QVERIFY(m_workspace->isToday());
        m_workspace->shiftDay(-1);
        QCOMPARE(m_workspace->heading(),
                 m_rig->calendar().monthAndDay(WorkspaceRig::kToday - WorkspaceRig::kDay));
        QVERIFY(!m_workspace->isToday());
        m_workspace->showToday();
        QVERIFY(m_workspace->isToday());
    }

    // The sidebar

    void theFootSaysHowMuchThereIs()
    {
        open();
        QCOMPARE(sidebar().storage(), u"No screenshots yet"_s);
        QCOMPARE(sidebar().countOfAll(), QString());
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60);
        refresh();
        QVERIFY(sidebar().storage().startsWith(u"1 screenshot · "_s));
        m_rig->add(u"b"_s, WorkspaceRig::kToday - WorkspaceRig::kDay);
        refresh();
        QVERIFY(sidebar().storage().startsWith(u"2 screenshots · "_s));
        QCOMPARE(sidebar().countToday(), u"1"_s);
        QCOMPARE(sidebar().countOfAll(), u"2"_s);
    }

    void midnightPassesWhileItIsOpen()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60);
        open();
        QCOMPARE(m_workspace->heading(), u"Today"_s);
        QVERIFY(!m_workspace->calendar()->hasNext());
        QSignalSpy headings(m_workspace.get(), &Workspace::headingChanged);
        QSignalSpy days(&sidebar(), &Sidebar::dayChanged);
        QSignalSpy counts(&sidebar(), &Sidebar::statsChanged);
        QSignalSpy months(m_workspace->calendar(), &CalendarMonth::dataChanged);
        QSignalSpy pictures(m_workspace->viewer(), &Viewer::changed);
        m_rig->clock().advance(WorkspaceRig::kToday + WorkspaceRig::kDay - 1 -
                               m_rig->clock().now());
        m_rig->settle();
        QCOMPARE(headings.size(), 0);
        QCOMPARE(counts.size(), 0);
        m_rig->clock().advance(30);
        m_rig->settle();
        QVERIFY(!counts.isEmpty());
        QVERIFY(!headings.isEmpty() && !days.isEmpty() && !months.isEmpty() && !pictures.isEmpty());
        QCOMPARE(m_workspace->heading(), u"November 14"_s);
        QVERIFY(!sidebar().isToday() && !m_workspace->isToday());
        QCOMPARE(sidebar().countToday(), QString());
        sidebar().showToday();
        m_rig->settle();
        QCOMPARE(m_workspace->content(), Workspace::Empty);
    }

    void theTwoRowsOfDaysAreChosenInTurn()
    {
        open();
        QVERIFY(sidebar().isToday() && !sidebar().isAllHistory());
        sidebar().showAllHistory();
        QVERIFY(!sidebar().isToday() && sidebar().isAllHistory());
        sidebar().showToday();
        QVERIFY(sidebar().isToday() && !sidebar().isAllHistory());
    }

    void aLensThatThereIsNoViewForIsShownByTheFirst()
    {
        m_rig->preferences().setLens(u"ask"_s);
        show();
        const QVariantList lenses = sidebar().lenses();
        QCOMPARE(lenses.first().value<Choice>().label, u"Moments"_s);
        QVERIFY(lenses.first().value<Choice>().isChosen);
    }

    void theAppearanceIsChosen()
    {
        m_rig->preferences().setAppearanceMode(u"nonsense"_s);
        show();
        QCOMPARE(sidebar().appearanceLabel(), u"Appearance: Match System"_s);
        QVERIFY(sidebar().appearances().at(0).value<Choice>().isChosen);
        sidebar().chooseAppearance(2);
        QCOMPARE(m_rig->preferences().appearanceMode(), u"dark"_s);
        QCOMPARE(sidebar().appearanceLabel(), u"Appearance: Dark"_s);
        QVERIFY(sidebar().appearances().at(2).value<Choice>().isChosen);
        sidebar().chooseAppearance(3);
        QCOMPARE(m_rig->preferences().appearanceMode(), u"dark"_s);
    }

    void theApplicationsAreThoseOfTheLibrary()
    {
        m_rig->installed.installed = {{{u"org.Quill"_s, u"Quill"_s}, u"no-such-icon"_s}};
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60, u"Quill"_s);
        m_rig->add(u"b"_s, WorkspaceRig::kToday + 61, u"Atlas"_s);
        open();
        ApplicationFilters& apps = *m_workspace->applications();
        QAbstractItemModelTester tester(&apps);
        QCOMPARE(apps.rowCount(), 2);
        QCOMPARE(apps.data(apps.index(0), ApplicationFilters::NameRole).toString(), u"Atlas"_s);
        QCOMPARE(apps.data(apps.index(1), ApplicationFilters::InitialRole).toString(), u"Q"_s);
        QVERIFY(apps.isAll());
        apps.choose(1);
        QCOMPARE(m_rig->listing().appFilter(), std::optional(u"Quill"_s));
        QVERIFY(apps.data(apps.index(1), ApplicationFilters::IsChosenRole).toBool());
        QVERIFY(!apps.data(apps.index(0), ApplicationFilters::IsChosenRole).toBool());
        apps.chooseAll();
        QVERIFY(apps.isAll());
        // One that comes takes nothing from those that are there.
        QSignalSpy resets(&apps, &QAbstractItemModel::modelReset);
        QSignalSpy removals(&apps, &QAbstractItemModel::rowsRemoved);
        m_rig->add(u"c"_s, WorkspaceRig::kToday + 62, u"Maps"_s);
        refresh();
        QCOMPARE(apps.rowCount(), 3);
        QCOMPARE(apps.data(apps.index(1), ApplicationFilters::NameRole).toString(), u"Maps"_s);
        QCOMPARE(resets.size() + removals.size(), 0);
        m_rig->model->store()->deleteMemory(u"b"_s).waitForFinished();
        refresh();
        QCOMPARE(apps.rowCount(), 2);
        QCOMPARE(apps.data(apps.index(0), ApplicationFilters::NameRole).toString(), u"Maps"_s);
        QCOMPARE(resets.size(), 0);
        QCOMPARE(removals.size(), 1);
    }

    // Banners

    void anErrorIsShownUntilItIsDismissed()
    {
        show();
        QSignalSpy changes(m_workspace.get(), &Workspace::errorMessageChanged);
        m_rig->recorder().setErrorMessage(u"The disk is full."_s);
        QCOMPARE(m_workspace->errorMessage(), u"The disk is full."_s);
        QVERIFY(!m_workspace->isPermissionMissing());
        QCOMPARE(changes.size(), 1);
        m_workspace->dismissError();
        QCOMPARE(m_workspace->errorMessage(), QString());
    }

    void theHintIsThereUntilItIsUnderstood()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60);
        open();
        QVERIFY(m_workspace->showsSearchHint());
        m_workspace->dismissSearchHint();
        QVERIFY(!m_workspace->showsSearchHint());
    }

    // The viewer

    void theSelectedOneIsDescribed()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60, u"Editor"_s, u"a heron"_s);
        m_rig->add(u"b"_s, WorkspaceRig::kToday + 3600);
        open();
        Viewer& viewer = *m_workspace->viewer();
        m_rig->listing().setSelectedID(u"a"_s);
        QCOMPARE(viewer.app(), u"Editor"_s);
        QCOMPARE(viewer.title(), u"Editor · Notes"_s);
        QCOMPARE(viewer.text(), u"a heron"_s);
        QCOMPARE(viewer.filename(), u"a.jpg"_s);
        QVERIFY(!viewer.canStepBack() && viewer.canStepOn());
        viewer.stepOn();
        QCOMPARE(viewer.filename(), u"b.jpg"_s);
        QVERIFY(viewer.canStepBack() && !viewer.canStepOn());
    }

    void itsFolderIsShown()
    {
        m_rig->add(u"a"_s, WorkspaceRig::kToday + 60);
        open();
        m_workspace->viewer()->showInFolder();
        QTRY_COMPARE(m_rig->fileManager.shown.size(), 1);
        QCOMPARE(m_rig->fileManager.shown[0].fileName(), u"a.jpg"_s);
        m_rig->fileManager.failure = u"There is no file manager."_s;
        m_workspace->viewer()->showInFolder();
        QTRY_COMPARE(m_workspace->errorMessage(),
                     u"Could not show the screenshot in its folder: There is no file manager."_s);
    }

    // The first run

    void aFirstRunIsToldWhatToDo()
    {
        open();
        FirstRunState& first = *m_workspace->firstRun();
        QCOMPARE(first.headline(), u"Give your day a memory."_s);
        QCOMPARE(first.note(), QString());
        QVERIFY(first.body().startsWith(
            u"Mossbank checks your screen every 30 seconds, saves a screenshot when"_s));
        m_rig->preferences().setSkipsUnchangedScreens(false);
        QVERIFY(first.body().startsWith(u"Mossbank saves a screenshot every 30 seconds, "_s));
        QCOMPARE(first.actionLabel(), u"Start recording"_s);
        first.act();
        QVERIFY(m_rig->recorder().isRecording());
        QVERIFY(first.isWaiting());
        QCOMPARE(first.actionLabel(), QString());
        QCOMPARE(first.step(), u"First screenshot in 30 seconds"_s);
        first.setProperty("isInFront", true);
        QCOMPARE(first.step(),
                 u"Switch to another window and the first screenshot follows within 30 seconds"_s);
    }

    void withoutThePermissionThatComesFirst()
    {
        m_rig->screen().isAllowedNow = false;
        open();
        FirstRunState& first = *m_workspace->firstRun();
        QCOMPARE(first.step(), u"Allow screen recording"_s);
        QCOMPARE(first.actionLabel(), u"Open System Settings"_s);
        m_rig->recorder().setErrorMessage(u"Screen recording is not allowed."_s);
        QVERIFY(m_workspace->isPermissionMissing());
    }

private:
    void show() { m_workspace = std::make_unique<Workspace>(m_rig->parts()); }
    void open()
    {
        show();
        m_rig->open();
    }
    void refresh()
    {
        m_rig->listing().refreshSoon();
        m_rig->settle();
    }

    Sidebar& sidebar() { return *m_workspace->sidebar(); }

    QStringList actions() const
    {
        QStringList labels;
        for (const QVariant& action : m_workspace->emptyState()->actions())
            labels.append(action.value<Choice>().label);
        return labels;
    }
    QString helpOf(int number) const
    {
        return m_workspace->emptyState()->actions().at(number).value<Choice>().help;
    }

    std::unique_ptr<WorkspaceRig> m_rig;
    std::unique_ptr<Workspace> m_workspace;
};

QTEST_MAIN(WorkspaceTest)
#include "WorkspaceTest.moc"

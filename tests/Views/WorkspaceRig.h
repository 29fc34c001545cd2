// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Views/Workspace/WorkspaceParts.h"
#include "tests/Core/Library/RawSql.h"
#include "tests/Fakes/FakeDesktopSettings.h"
#include "tests/Fakes/FakeFileManager.h"
#include "tests/Fakes/FakeInstalledApplications.h"
#include "tests/Model/RecorderRig.h"

#include <QColor>
#include <QDir>
#include <QImage>

#include <memory>

namespace mossbank {

/// A whole model over a real library, for what stands on it.
class WorkspaceRig {
public:
    /// The first moment of the day that the fake clock begins in.
    static constexpr Date kToday = {1'699'920'000};
    static constexpr double kDay = 86'400;

    WorkspaceRig()
    {
        OpenedLibrary library;
        library.store = std::make_unique<HistoryStore>(
            HistoryStore::Writing{.root = m_rig.libraryRoot(), .calendar = m_rig.calendar});
        model = std::make_unique<AppModel>(m_rig.surroundings(), std::move(library));
    }

    WorkspaceParts parts()
    {
        return {.model = *model,
                .preferences = m_rig.preferences,
                .clock = m_rig.clock,
                .calendar = m_rig.calendar,
                .installedApplications = installed,
                .fileManager = fileManager,
                .desktop = desktop};
    }

    Surroundings surroundings() { return m_rig.surroundings(); }
    Listing& listing() { return model->listing(); }
    Recorder& recorder() { return model->recorder(); }
    Preferences& preferences() { return m_rig.preferences; }
    FakeClock& clock() { return m_rig.clock; }
    FakeFrontApplication& front() { return m_rig.front; }
    FakeScreen& screen() { return m_rig.screen; }
    FakeRelauncher& relauncher() { return m_rig.relauncher; }
    Calendar calendar() const { return m_rig.calendar(); }

    /// A screenshot of that moment. Its picture is of one colour.
    void add(const QString& id, Date moment, const QString& app = QStringLiteral("Editor"),
             const QString& text = QStringLiteral("moss"), const QColor& colour = Qt::darkGreen)
    {
        RawSql(m_rig.libraryRoot() + QStringLiteral("/history.sqlite"))
            .rows(QStringLiteral("INSERT INTO memories VALUES (?1, CAST(?2 AS REAL), ?3, 'org.' || "
                                 "?3, ?4, ?1 || '.jpg', 1, 'Notes', '')"),
                  {id, QString::number(moment.secondsSince1970, 'f', 3), app, text});
        QImage picture(320, 200, QImage::Format_RGB32);
        picture.fill(colour);
        setPicture(id, picture);
    }

    void setPicture(const QString& id, const QImage& picture)
    {
        const QString path = model->store()->images() + u'/' + id + QStringLiteral(".jpg");
        if (!picture.save(path, "JPEG", 90))
            qFatal("a picture cannot be written");
    }

    void removePicture(const QString& id)
    {
        QFile::remove(model->store()->images() + u'/' + id + QStringLiteral(".jpg"));
    }

    /// Until the list is that of what was chosen.
    void settle()
    {
        // A change is followed by a refresh some moments later.
        for (int turn = 0; turn < 3; ++turn) {
            QCoreApplication::processEvents();
            m_rig.clock.advance(0.2);
        }
        QVERIFY2(QTest::qWaitFor([this] { return !listing().isLoading(); }, 20'000),
                 "the list does not come");
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }

    /// As for a window that shows it.
    void open()
    {
        listing().openWorkspace();
        QCoreApplication::processEvents();
        settle();
    }

    FakeInstalledApplications installed;
    FakeFileManager fileManager;
    FakeDesktopSettings desktop;

private:
    RecorderRig m_rig{false};

public:
    std::unique_ptr<AppModel> model;
};

} // namespace mossbank

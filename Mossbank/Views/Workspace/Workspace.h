// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Pictures/PictureFolder.h"
#include "Mossbank/Views/Workspace/ApplicationFilters.h"
#include "Mossbank/Views/Workspace/CalendarMonth.h"
#include "Mossbank/Views/Workspace/DayWatch.h"
#include "Mossbank/Views/Workspace/EmptyState.h"
#include "Mossbank/Views/Workspace/FirstRunState.h"
#include "Mossbank/Views/Workspace/MemoryRows.h"
#include "Mossbank/Views/Workspace/RecordingSwitch.h"
#include "Mossbank/Views/Workspace/Sidebar.h"
#include "Mossbank/Views/Workspace/Viewer.h"
#include "Mossbank/Views/Workspace/WorkspaceParts.h"

#include <QObject>
#include <QtQmlIntegration>

namespace mossbank {

/// What the main window shows, region by region, and the little that belongs to the window alone.
/// It decides nothing about the history: it asks the model, and sets its filters.
///
/// Threading: the main thread.
class Workspace : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")

    Q_PROPERTY(mossbank::RecordingSwitch* recording READ recording CONSTANT)
    Q_PROPERTY(mossbank::Sidebar* sidebar READ sidebar CONSTANT)
    Q_PROPERTY(mossbank::CalendarMonth* calendar READ calendar CONSTANT)
    Q_PROPERTY(mossbank::ApplicationFilters* applications READ applications CONSTANT)
    Q_PROPERTY(mossbank::MemoryRows* memories READ memories CONSTANT)
    Q_PROPERTY(mossbank::Viewer* viewer READ viewer CONSTANT)
    Q_PROPERTY(mossbank::EmptyState* emptyState READ emptyState CONSTANT)
    Q_PROPERTY(mossbank::FirstRunState* firstRun READ firstRun CONSTANT)
    Q_PROPERTY(mossbank::PictureFolder pictures READ pictures CONSTANT)

    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(Content content READ content NOTIFY contentChanged)
    /// "Today", "May 31", and how many there are.
    Q_PROPERTY(QString heading READ heading NOTIFY headingChanged)
    Q_PROPERTY(QString count READ count NOTIFY headingChanged)
    /// Neither a later day nor the way back to it leads anywhere from today.
    Q_PROPERTY(bool isToday READ isToday NOTIFY headingChanged)
    Q_PROPERTY(bool canShowEarlier READ canShowEarlier NOTIFY headingChanged)

    /// What moves for the eye alone stands still.
    Q_PROPERTY(bool reducesMotion READ reducesMotion NOTIFY reducesMotionChanged)
    Q_PROPERTY(bool isDemo READ isDemo CONSTANT)
    Q_PROPERTY(bool showsSearchHint READ showsSearchHint NOTIFY showsSearchHintChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isPermissionMissing READ isPermissionMissing NOTIFY errorMessageChanged)

    /// The words of the selected screenshot are on show beside it.
    Q_PROPERTY(bool showsText READ showsText WRITE setShowsText NOTIFY showsTextChanged)
    /// The user is being asked whether a screenshot is to be deleted.
    Q_PROPERTY(bool asksToDelete MEMBER m_asksToDelete NOTIFY asksToDeleteChanged)

public:
    /// What fills the main part of the window.
    enum Content { FirstRun, Loading, Empty, Results, Moments };
    Q_ENUM(Content)

    explicit Workspace(const WorkspaceParts& parts, QObject* parent = nullptr);

    RecordingSwitch* recording() { return &m_recording; }
    Sidebar* sidebar() { return &m_sidebar; }
    CalendarMonth* calendar() { return &m_calendar; }
    ApplicationFilters* applications() { return &m_applications; }
    MemoryRows* memories() { return &m_memories; }
    Viewer* viewer() { return &m_viewer; }
    EmptyState* emptyState() { return &m_emptyState; }
    FirstRunState* firstRun() { return &m_firstRun; }
    PictureFolder pictures() const;

    QString query() const;
    void setQuery(const QString& query);
    Content content() const { return m_content; }
    QString heading() const;
    QString count() const;
    bool isToday() const;
    bool canShowEarlier() const;
    bool reducesMotion() const;
    bool isDemo() const;
    bool showsSearchHint() const;
    QString errorMessage() const;
    bool isPermissionMissing() const;

    bool showsText() const { return m_showsText; }
    void setShowsText(bool shows);

    Q_INVOKABLE void shiftDay(int days);
    Q_INVOKABLE void showToday();
    Q_INVOKABLE void showEarlier();
    Q_INVOKABLE void dismissSearchHint();
    Q_INVOKABLE void dismissError();
    Q_INVOKABLE void openPermissions();

Q_SIGNALS:
    void queryChanged();
    void contentChanged();
    void headingChanged();
    void reducesMotionChanged();
    void showsSearchHintChanged();
    void errorMessageChanged();
    void showsTextChanged();
    void asksToDeleteChanged();

private:
    void follow();
    void passIntoTheNextDay();
    void arrange();
    Content fitting() const;

    WorkspaceParts m_parts;
    Listing& m_listing;
    DayWatch m_dayWatch;
    RecordingSwitch m_recording;
    Sidebar m_sidebar;
    CalendarMonth m_calendar;
    ApplicationFilters m_applications;
    MemoryRows m_memories;
    Viewer m_viewer;
    EmptyState m_emptyState;
    FirstRunState m_firstRun;
    Content m_content = Loading;
    /// The library has answered once. Until then nobody knows whether it holds anything.
    bool m_hasLooked = false;
    bool m_showsText = false;
    bool m_asksToDelete = false;
};

} // namespace mossbank

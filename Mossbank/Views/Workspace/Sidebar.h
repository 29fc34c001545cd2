// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Workspace/WorkspaceParts.h"

#include <QObject>
#include <QVariantList>
#include <QtQmlIntegration>

namespace mossbank {

class Listing;

/// What the side of the window shows besides the calendar and the applications: the lenses, the two
/// rows of days, the size of the library, how the window looks.
///
/// Threading: the main thread.
class Sidebar : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")
    /// Of `Choice`: the lenses that there are.
    Q_PROPERTY(QVariantList lenses READ lenses NOTIFY lensChanged)
    Q_PROPERTY(QVariantList appearances READ appearances NOTIFY appearanceChanged)
    Q_PROPERTY(QString appearanceLabel READ appearanceLabel NOTIFY appearanceChanged)
    Q_PROPERTY(bool isToday READ isToday NOTIFY dayChanged)
    Q_PROPERTY(bool isAllHistory READ isAllHistory NOTIFY dayChanged)
    /// How many screenshots there are. Empty for none.
    Q_PROPERTY(QString countToday READ countToday NOTIFY statsChanged)
    Q_PROPERTY(QString countOfAll READ countOfAll NOTIFY statsChanged)
    /// "82 screenshots · 3.1 GB on this computer".
    Q_PROPERTY(QString storage READ storage NOTIFY statsChanged)
    Q_PROPERTY(bool isSaving READ isSaving NOTIFY savingChanged)

public:
    explicit Sidebar(const WorkspaceParts& parts, QObject* parent = nullptr);

    QVariantList lenses() const;
    Q_INVOKABLE void chooseLens(int number);
    QVariantList appearances() const;
    QString appearanceLabel() const;
    Q_INVOKABLE void chooseAppearance(int number);

    bool isToday() const;
    bool isAllHistory() const;
    QString countToday() const;
    QString countOfAll() const;
    Q_INVOKABLE void showToday();
    Q_INVOKABLE void showAllHistory();

    QString storage() const;
    bool isSaving() const;

Q_SIGNALS:
    void lensChanged();
    void appearanceChanged();
    void dayChanged();
    void statsChanged();
    void savingChanged();

private:
    WorkspaceParts m_parts;
    Listing& m_listing;
};

} // namespace mossbank

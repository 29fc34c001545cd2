// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/ListingWords.h"
#include "Mossbank/Views/Workspace/WorkspaceParts.h"

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQmlIntegration>

#include <vector>

namespace mossbank {

class Listing;

/// What is said where the list has no rows, and the ways on from there.
///
/// Threading: the main thread.
class EmptyState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString detail READ detail NOTIFY changed)
    /// Of `Choice`: label and help of each button.
    Q_PROPERTY(QVariantList actions READ actions NOTIFY actionsChanged)

public:
    explicit EmptyState(const WorkspaceParts& parts, QObject* parent = nullptr);

    QString symbol() const;
    QString title() const;
    QString detail() const;
    const QVariantList& actions() const { return m_actions; }
    /// What the button of that number does.
    Q_INVOKABLE void act(int number);

Q_SIGNALS:
    void changed();
    void actionsChanged();

private:
    enum class Action {
        SearchAllHistory,
        GoToLatestDay,
        ClearAppFilter,
        ShowAllHistory,
    };

    ListingWords words() const;
    std::vector<Action> possible() const;
    QVariant worded(Action action) const;
    void update();

    WorkspaceParts m_parts;
    Listing& m_listing;
    /// Kept, so that a button that is there already stays under the user's hand.
    QVariantList m_actions;
};

} // namespace mossbank

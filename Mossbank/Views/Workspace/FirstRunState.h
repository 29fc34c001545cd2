// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Launch.h"
#include "Mossbank/Views/Workspace/WorkspaceParts.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace mossbank {

/// What the window says while the library is empty, and the one thing to do then.
///
/// Threading: the main thread.
class FirstRunState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")
    Q_PROPERTY(QString headline READ headline CONSTANT)
    /// That this is the sample library. Empty where it is not.
    Q_PROPERTY(QString note READ note CONSTANT)
    Q_PROPERTY(QString body READ body NOTIFY changed)
    /// What to do, over the explanation of it. Empty where the button says it.
    Q_PROPERTY(QString step READ step NOTIFY changed)
    Q_PROPERTY(QString explanation READ explanation NOTIFY changed)
    /// Empty: there is no button.
    Q_PROPERTY(QString actionLabel READ actionLabel NOTIFY changed)
    Q_PROPERTY(QString actionSymbol READ actionSymbol NOTIFY changed)
    /// A picture is being waited for.
    Q_PROPERTY(bool isWaiting READ isWaiting NOTIFY changed)
    /// This program's window is in front, which is never in a picture.
    Q_PROPERTY(bool isInFront MEMBER m_isInFront NOTIFY changed)

public:
    /// `isDemo`: the library is the sample library.
    FirstRunState(const WorkspaceParts& parts, bool isDemo, QObject* parent = nullptr);

    QString headline() const;
    QString note() const;
    QString body() const;
    QString step() const;
    QString explanation() const;
    QString actionLabel() const;
    QString actionSymbol() const;
    bool isWaiting() const;
    Q_INVOKABLE void act();

Q_SIGNALS:
    void changed();

private:
    Launch::FirstRun state() const;

    WorkspaceParts m_parts;
    bool m_isDemo;
    bool m_isInFront = false;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace mossbank {

/// What the question before an end of the program says, and the two answers to it.
class QuitAnswer : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("It is made by the window's owner.")
    Q_PROPERTY(QString message READ message CONSTANT)
    Q_PROPERTY(QString explanation READ explanation CONSTANT)
    Q_PROPERTY(QString keepLabel READ keepLabel CONSTANT)
    Q_PROPERTY(QString quitLabel READ quitLabel CONSTANT)

public:
    static QString message();
    static QString explanation();
    static QString keepLabel();
    static QString quitLabel();

    Q_INVOKABLE void keep() { Q_EMIT given(false); }
    Q_INVOKABLE void quit() { Q_EMIT given(true); }

Q_SIGNALS:
    /// Whether the end is meant.
    void given(bool isQuitMeant);
};

} // namespace mossbank

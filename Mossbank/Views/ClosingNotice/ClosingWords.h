// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace mossbank {

/// What is said when the last window is closed and recording goes on.
class ClosingWords : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("It is made by the window's owner.")
    Q_PROPERTY(QString message READ message CONSTANT)
    Q_PROPERTY(QString explanation READ explanation CONSTANT)
    Q_PROPERTY(QString label READ label CONSTANT)

public:
    static QString message();
    static QString explanation();
    static QString label();

    Q_INVOKABLE void dismiss() { Q_EMIT dismissed(); }

Q_SIGNALS:
    /// The user has seen it.
    void dismissed();
};

} // namespace mossbank

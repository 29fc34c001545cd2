// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace mossbank {

/// One of some things that the user can choose, or have done.
struct Choice {
    Q_GADGET
    QML_VALUE_TYPE(choice)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(QString help MEMBER help)
    Q_PROPERTY(bool isChosen MEMBER isChosen)

public:
    QString label;
    /// Name of what is drawn beside it.
    QString symbol = {};
    QString help = {};
    bool isChosen = false;

    friend bool operator==(const Choice&, const Choice&) = default;
};

} // namespace mossbank

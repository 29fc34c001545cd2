// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QScreen;

namespace mossbank {

/// What a display says of itself.
struct DisplayLabel {
    /// Its maker's name for it. Empty when it tells none.
    QString model;
    /// Where it is plugged in: "HDMI-1".
    QString connector;
};

/// The model, or else the connector. Of one model used twice both are told apart by where they are
/// plugged in.
QStringList displayNamesOf(const QList<DisplayLabel>& displays);
QStringList displayNamesOf(const QList<QScreen*>& screens);

} // namespace mossbank

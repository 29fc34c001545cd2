// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/DesktopSettings.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace mossbank {

/// What a desktop's portal has told of the user's settings, and what that means. Desktops keep the
/// same choice in different places.
///
/// A value of the wrong type is as good as none.
class PortalValues {
public:
    /// By namespace, then by key.
    using All = QMap<QString, QVariantMap>;

    /// The namespaces that matter here.
    static QStringList namespaces();

    /// These are all that there are.
    void replace(const All& all) { m_all = all; }
    /// One has changed.
    void change(const QString& space, const QString& key, const QVariant& value);

    DesktopSettings::ColourScheme colourScheme() const;
    bool reducesMotion() const;

private:
    QVariant value(const QString& space, const QString& key) const;

    All m_all;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace mossbank {

/// The file of the user's choices. QSettings takes from a file with mistakes in it what it can make
/// out and, with the next choice, writes that over it: a list of exclusions that stood behind a
/// mistake would be gone, and nobody would be told. So nothing is taken from a file that cannot be
/// read as a whole, and it stays as it is until something is chosen. Then it is kept under another
/// name, "{name}.unreadable", and begun anew.
///
/// Threading: that of its owner.
class ChoicesFile {
public:
    explicit ChoicesFile(const QString& path);

    /// Whether it could be read at the start, or was not there.
    bool isReadable() const { return m_isReadable; }
    QString fileName() const { return m_settings.fileName(); }

    bool contains(const QString& key) const;
    /// Invalid for what is not there.
    QVariant value(const QString& key) const;
    void setValue(const QString& key, const QVariant& value);
    void remove(const QString& key);

    /// What stands as a remark behind the value of a key, as the file is now. Empty for none.
    QString remarkBehind(const QString& key) const;

    /// Has what was set written at once. Whether it is.
    bool sync();

private:
    bool keepUnderAnotherName() const;
    /// Whether what is set goes nowhere: the file can be neither read nor kept.
    bool isHeld() const { return !m_isReadable && !m_isBegunAnew; }

    QSettings m_settings;
    bool m_isReadable;
    bool m_isBegunAnew = false;
    /// What was set while there is no file for it.
    QVariantMap m_held;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

namespace mossbank {

/// The file of the user's choices. QSettings takes from a file with mistakes in it what it can make
/// out and, with the next choice, writes that over it: a list of exclusions that stood behind a
/// mistake would be gone, and nobody would be told. So nothing is taken from a file that cannot be
/// read as a whole, and it stays as it is until something is chosen. Then it is kept under another
/// name, "{name}.unreadable", and begun anew with what is known; with nothing at the start, with
/// all that was chosen where the mistake came while the program ran. A file that was taken away or
/// emptied meanwhile is begun anew in the same way.
///
/// What others write meanwhile is kept, but for remarks: QSettings leaves those out.
///
/// Threading: that of its owner.
class ChoicesFile {
public:
    explicit ChoicesFile(const QString& path);

    /// Whether it could be read at the start, or was not there.
    bool isReadable() const { return m_isReadable; }
    const QString& fileName() const { return m_path; }

    QStringList keys() const { return m_values.keys(); }
    bool contains(const QString& key) const { return m_values.contains(key); }
    /// Invalid for what is not there.
    QVariant value(const QString& key) const { return m_values.value(key); }
    /// What stands in the file as it was last read or written, whatever was set since.
    QVariant stored(const QString& key) const { return m_stored.value(key); }

    /// Written when they return, or they return false. What could not be written counts all the
    /// same, and is tried again with the next.
    bool setValue(const QString& key, const QVariant& value);
    bool remove(const QString& key);

    /// Takes up what others have written meanwhile, where it can be read.
    void refresh();

    /// What stands as a remark behind the value of a key, as the file is now. Empty for none.
    QString remarkBehind(const QString& key) const;

private:
    /// What there is to be taken from the file, as far as it can be.
    enum class Content { None, Whole, Unreadable };
    Content content() const;
    void read();
    bool write();
    bool writeAnew(const QVariantMap& values) const;
    bool keepUnderAnotherName() const;
    /// Removes what a process that was killed while it wrote has left.
    void clearUp() const;

    QString m_path;
    bool m_isReadable;
    QVariantMap m_values;
    QVariantMap m_stored;
    QSet<QString> m_unwritten;
};

} // namespace mossbank

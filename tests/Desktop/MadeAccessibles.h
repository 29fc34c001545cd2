// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Desktop/PaintedWindows.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QHash>
#include <QMutex>
#include <QThread>
#include <QVariantList>

#include <memory>
#include <optional>

namespace mossbank::test {

/// A program of this process that tells assistive tools what is in its one window, and the services
/// that lead to it, all on one bus. It answers as programs do, a password field with the focus in a
/// page with an address, until it is told to answer otherwise: with whatever, or not at all.
///
/// Threading: the main thread; it answers on a thread of its own.
class MadeAccessibles final : public QDBusVirtualObject {
    Q_OBJECT

public:
    static const QString kTitle;
    static const QString kAddress;

    explicit MadeAccessibles(const QString& busAddress);
    ~MadeAccessibles() override;

    /// Whether it has come to the bus.
    bool isThere() const { return m_isThere; }

    /// Shows its window and waits until it is the active one. It tells `more` behind the title to
    /// assistive tools alone. Nothing when it does not come to be so.
    std::unique_ptr<PaintedWindows> show(const QString& more = {});

    /// What of it is asked.
    enum class Part { Registry, Program, Window, Field, Document };
    Q_ENUM(Part)
    /// From now on `method` of it, or the property of that name, is answered with these.
    void answer(Part part, const QString& method, const QVariantList& values);
    /// What it answers there now.
    QVariantList answerOf(Part part, const QString& method) const;
    /// From now on nothing that programs are asked is answered.
    void keepSilent();
    /// Tells that the field has the focus.
    void tellOfFocus();

    /// Values of the types that the protocol has.
    static QVariant role(quint32 number) { return number; }
    static QVariant states(const QList<int>& numbers);
    static QVariant texts(const QMap<QString, QString>& texts);

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QVariant objects(const QList<Part>& parts) const;
    std::optional<QVariantList> valuesFor(const QString& path, const QString& method) const;

    QString m_name;
    QDBusConnection m_connection;
    QThread m_thread;
    bool m_isThere = false;

    mutable QMutex m_mutex;
    QHash<QString, QVariantList> m_answers;
    bool m_isSilent = false;
};

} // namespace mossbank::test

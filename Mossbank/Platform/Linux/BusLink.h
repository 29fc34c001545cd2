// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <qcoro/qcorotask.h>

#include <optional>

namespace mossbank {

/// A question to a program on a message bus.
struct BusCall {
    QString service;
    QString path;
    QString interface;
    QString member;
    QVariantList arguments = {};
};

/// What of a bus's signals is heard. What is empty is any.
struct BusSignals {
    QString service = {};
    QString path = {};
    QString interface;
    QString member;
    QString firstArgument = {};
};

/// A connection to a message bus on which nobody ever waits, not even for its opening: a bus that
/// has stopped would hold an ordinary connection for as long as it likes.
///
/// Who still waits for an answer when it goes is never gone on with: not even with an answer that
/// is there already, since whoever asked for it has mostly gone as well.
///
/// Threading: the thread it is made on.
/// Errors: an answer that does not come in time is an error message. Nothing is thrown but in who
/// waits for a link that has gone, to take it down.
class BusLink final : public QObject {
    Q_OBJECT

public:
    BusLink() = default;
    ~BusLink() override;

    /// Whether the bus took this program in. Closes what was open before.
    QCoro::Task<bool> open(QString address, int limit);
    void close();
    bool isOpen() const { return m_connection.has_value(); }

    /// The answer, or an error once `limit` milliseconds have passed.
    QCoro::Task<QDBusMessage> call(BusCall call, int limit);

    /// Has the bus send these on to `slot` of `receiver`, which takes a QDBusMessage.
    QCoro::Task<bool> listen(BusSignals wanted, QObject* receiver, const char* slot, int limit);

    /// Has the public slots of `object` be called from the bus, at `path`, for as long as this is
    /// open. False when it is not.
    bool offer(const QString& path, QObject* object);

Q_SIGNALS:
    /// The bus has gone.
    void lost();

private:
    Q_SLOT void noticeEnd();

    QString m_name;
    std::optional<QDBusConnection> m_connection;
};

/// Whether a question had no answer because the time was over, as against one that was refused.
bool isSilence(const QDBusMessage& answer);

} // namespace mossbank

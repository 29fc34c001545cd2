// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QRect>
#include <QString>
#include <QVariantList>

#include <optional>

namespace mossbank::test {

/// The numbers that the protocol gives to what the tests look for.
enum class SpokenRole : quint32 {
    Alert = 2,
    Dialog = 16,
    Frame = 23,
    Label = 29,
    ListItem = 32,
    MenuItem = 35,
    Button = 43,
    Text = 61,
    Heading = 83,
};
enum class SpokenState : quint32 {
    Active = 1,
    Focused = 12,
    Selected = 23,
    Showing = 25,
};

/// Something in a window, as it is told.
struct SpokenPart {
    QString service;
    QString path;
    quint32 role = 0;
    QString name;
    quint64 states = 0;
    /// So many others it lies in.
    int depth = 0;

    bool is(SpokenRole other) const { return role == static_cast<quint32>(other); }
    bool has(SpokenState state) const { return (states >> static_cast<quint32>(state) & 1U) != 0; }
};

/// What a program tells assistive tools of its windows, and what they have it do. Nothing is
/// remembered: each question is asked anew, and waits for the answer.
///
/// Errors: an answer that does not come, of what has gone or a program that has ended, is an empty
/// one.
class SpokenProgram {
public:
    /// The program that runs as this process, on the accessibility bus of the session that the
    /// environment names. It need not have begun to tell.
    explicit SpokenProgram(qint64 process);
    ~SpokenProgram();
    Q_DISABLE_COPY_MOVE(SpokenProgram)

    /// All that shows, each before what lies in it.
    QList<SpokenPart> parts();
    QList<SpokenPart> parts(SpokenRole role);
    /// The first such part that shows.
    std::optional<SpokenPart> find(SpokenRole role, const QString& name);
    /// All that shows by role, name and states, a line each, for whoever reads why a test failed.
    QString tree();

    /// Has it do what a press does. False where it does nothing.
    bool press(const SpokenPart& part);
    /// The words written in it.
    QString text(const SpokenPart& part);
    QString description(const SpokenPart& part);
    /// Where it is on the display.
    QRect frame(const SpokenPart& part);

private:
    QDBusMessage ask(const SpokenPart& part, const QString& interface, const QString& member,
                     const QVariantList& arguments = {});
    QString property(const SpokenPart& part, const QString& name);
    QList<SpokenPart> children(const SpokenPart& part);
    qint64 processOf(const SpokenPart& program);
    std::optional<SpokenPart> findProgram();
    void collect(SpokenPart part, QList<SpokenPart>& found);

    qint64 m_process;
    QString m_connectionName;
    QDBusConnection m_bus;
};

} // namespace mossbank::test

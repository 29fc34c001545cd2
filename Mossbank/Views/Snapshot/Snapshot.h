// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Snapshot/SnapshotOptions.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QImage>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class QQuickWindow;

namespace mossbank {

class Clock;

/// Draws a window of this program to a PNG file when the command line asks for it, and has the
/// program end. What the file shows is what the user would see, by whatever Qt draws with.
///
/// A window that another belongs to (its transient parent) is a sheet of that one. A window that
/// shows a sheet within itself names its item in a property `sheet`; then that part alone is drawn.
///
/// Threading: the main thread.
class Snapshot : public QObject {
    Q_OBJECT

public:
    /// The clock and the appearance outlive it.
    Snapshot(SnapshotOptions options, Clock& clock, Appearance& appearance,
             QObject* parent = nullptr);
    ~Snapshot() override;

    const SnapshotOptions& options() const { return m_options; }

    /// Adds a line to a file beside the picture's, for who wants to know how it came about. Nothing
    /// where no picture is asked for, or the file cannot be written.
    void note(const QString& text) const;

    /// Draws the window in front to a file. Why it could not be; absent when it is done.
    std::optional<QString> write(const QString& path) const;

    /// Once, when the window is there. Where a picture is asked for and `enabled` holds: has things
    /// settle, calls `prepare`, has them settle again, draws, and ends.
    void takeWhenAsked(bool enabled, std::function<void()> prepare);

    /// An image as PNG. Absent where it cannot be.
    static std::optional<QByteArray> encoded(const QImage& image);

Q_SIGNALS:
    void failed(const QString& text);
    /// The program is to end, also after a failure.
    void ended();

private:
    QCoro::Task<> take(QString path, std::function<void()> prepare, Cancellation cancellation);
    QQuickWindow* windowToDraw() const;

    SnapshotOptions m_options;
    Clock& m_clock;
    Appearance& m_appearance;
    /// Last: cancelled before anything above goes.
    Job m_taking;
};

} // namespace mossbank

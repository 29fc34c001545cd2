// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QPointer>

namespace mossbank {

class Preferences;
class Recorder;
class TrayHost;

/// Says, once ever, that recording goes on without a window, and how to come back. Only where no
/// icon in the tray says it: a program that has vanished and yet records must not surprise anybody.
///
/// Threading: the main thread.
class ClosingNotice : public QObject {
    Q_OBJECT

public:
    /// All of them outlive it.
    ClosingNotice(Preferences& preferences, const Recorder& recorder, const TrayHost& host,
                  QObject* parent = nullptr);
    ~ClosingNotice() override;

    /// The user has closed the last window.
    void windowClosed();
    /// The user has come back: it is of no use any more.
    void dismiss();
    bool isOpen() const;

private:
    class Opened;

    void open();

    Preferences& m_preferences;
    const Recorder& m_recorder;
    const TrayHost& m_host;
    QPointer<Opened> m_opened;
};

} // namespace mossbank

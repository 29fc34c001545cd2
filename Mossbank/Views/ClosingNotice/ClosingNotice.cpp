// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ClosingNotice/ClosingNotice.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Ports/TrayHost.h"
#include "Mossbank/Views/ClosingNotice/ClosingWords.h"
#include "Mossbank/Views/QuickWindow.h"
#include "MossbankCore/Support/Failure.h"

#include <QQmlEngine>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

namespace mossbank {

/// The window while it is open. It ends itself when the user has seen it.
class ClosingNotice::Opened final : public QObject {
    Q_OBJECT

public:
    Opened()
    {
        connect(&m_words, &ClosingWords::dismissed, this, &Opened::end);
        m_window = makeQuickWindow(m_engine, u"ClosingNotice/ClosingNoticeView.qml"_s,
                                   {{u"words"_s, QVariant::fromValue(&m_words)}});
        bringToFront(*m_window);
    }

    // Called by what it lets go, which must not go under its own feet.
    void end()
    {
        m_hasEnded = true;
        m_window->hide();
        deleteLater();
    }
    bool hasEnded() const { return m_hasEnded; }

private:
    ClosingWords m_words;
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    bool m_hasEnded = false;
};

ClosingNotice::ClosingNotice(Preferences& preferences, const Recorder& recorder,
                             const TrayHost& host, QObject* parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_recorder(recorder)
    , m_host(host)
{
}

ClosingNotice::~ClosingNotice()
{
    delete m_opened;
}

void ClosingNotice::windowClosed()
{
    if (m_recorder.isRecording() && !m_host.availability().isAvailable &&
        !m_preferences.hasSeenClosingNotice())
        open();
}

void ClosingNotice::open()
{
    try {
        m_opened = new Opened;
    } catch (const Failure&) {
        return; // the next time then
    }
    m_preferences.setHasSeenClosingNotice(true);
}

void ClosingNotice::dismiss()
{
    if (isOpen())
        m_opened->end();
}

bool ClosingNotice::isOpen() const
{
    return m_opened && !m_opened->hasEnded();
}

} // namespace mossbank

#include "ClosingNotice.moc"

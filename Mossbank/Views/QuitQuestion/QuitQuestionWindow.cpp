// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/QuitQuestion/QuitQuestionWindow.h"

#include "Mossbank/Views/QuickWindow.h"
#include "Mossbank/Views/QuitQuestion/QuitAnswer.h"
#include "MossbankCore/Support/Failure.h"

#include <QPromise>
#include <QQmlEngine>
#include <QQuickWindow>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

/// The window while it is open. It ends itself when the user has answered.
class QuitQuestionWindow::Opened final : public QObject {
    Q_OBJECT

public:
    Opened()
    {
        m_promise.start();
        connect(&m_answer, &QuitAnswer::given, this, &Opened::end);
        m_window = makeQuickWindow(m_engine, u"QuitQuestion/QuitQuestionView.qml"_s,
                                   {{u"answer"_s, QVariant::fromValue(&m_answer)}});
        bringToFront(*m_window);
    }
    ~Opened() override { end(false); }

    QFuture<bool> answer() { return m_promise.future(); }
    bool hasEnded() const { return m_hasEnded; }
    QQuickWindow& window() { return *m_window; }

private:
    // Called by what it lets go, which must not go under its own feet.
    void end(bool isQuitMeant)
    {
        if (std::exchange(m_hasEnded, true))
            return;
        if (m_window)
            m_window->hide();
        m_promise.addResult(isQuitMeant);
        m_promise.finish();
        deleteLater();
    }

    QPromise<bool> m_promise;
    QuitAnswer m_answer;
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    bool m_hasEnded = false;
};

QuitQuestionWindow::~QuitQuestionWindow()
{
    delete m_opened;
}

QFuture<bool> QuitQuestionWindow::isQuitMeant()
{
    if (m_opened && !m_opened->hasEnded()) {
        bringToFront(m_opened->window());
        return QtFuture::makeReadyFuture(false);
    }
    try {
        m_opened = new Opened;
        return m_opened->answer();
    } catch (const Failure& failure) {
        return QtFuture::makeExceptionalFuture<bool>(failure);
    }
}

} // namespace mossbank

#include "QuitQuestionWindow.moc"

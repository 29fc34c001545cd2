// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ApplicationChooser/ApplicationChooserWindow.h"

#include "Mossbank/Views/ApplicationChooser/ApplicationChoices.h"
#include "Mossbank/Views/ApplicationIcons.h"
#include "Mossbank/Views/QuickWindow.h"
#include "MossbankCore/Support/Failure.h"

#include <QPromise>
#include <QQmlEngine>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

namespace mossbank {

/// The window while it is open. It ends itself when the user has chosen or has not.
class ApplicationChooserWindow::Opened final : public QObject {
    Q_OBJECT

public:
    Opened(const QString& title, const QList<InstalledApplication>& installed)
        : m_choices(title, installed)
    {
        m_answer.start();
        connect(&m_choices, &ApplicationChoices::chosen, this, &Opened::end);
        connect(&m_choices, &ApplicationChoices::cancelled, this, [this] { end(std::nullopt); });
        m_engine.addImageProvider(QString::fromUtf16(ApplicationIcons::kID), new ApplicationIcons);
        m_window = makeQuickWindow(m_engine, u"ApplicationChooser/ApplicationChooserView.qml"_s,
                                   {{u"choices"_s, QVariant::fromValue(&m_choices)}});
    }
    ~Opened() override { end(std::nullopt); }

    QFuture<std::optional<Application>> answer() { return m_answer.future(); }

    bool hasEnded() const { return m_hasEnded; }

    QQuickWindow& window() { return *m_window; }

private:
    // Called by what it lets go, which must not go under its own feet.
    void end(const std::optional<Application>& chosen)
    {
        if (std::exchange(m_hasEnded, true))
            return;
        if (m_window)
            m_window->hide();
        m_answer.addResult(chosen);
        m_answer.finish();
        deleteLater();
    }

    QPromise<std::optional<Application>> m_answer;
    ApplicationChoices m_choices;
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    bool m_hasEnded = false;
};

ApplicationChooserWindow::ApplicationChooserWindow(const InstalledApplications& installed)
    : m_installed(installed)
{
}

ApplicationChooserWindow::~ApplicationChooserWindow()
{
    delete m_opened;
}

QFuture<std::optional<Application>> ApplicationChooserWindow::choose(const QString& title)
{
    if (m_opened && !m_opened->hasEnded()) {
        bringToFront(m_opened->window());
        return QtFuture::makeReadyFuture(std::optional<Application>());
    }
    try {
        m_opened = new Opened(title, m_installed.list());
        return m_opened->answer();
    } catch (const Failure& failure) {
        return QtFuture::makeExceptionalFuture<std::optional<Application>>(failure);
    }
}

} // namespace mossbank

#include "ApplicationChooserWindow.moc"

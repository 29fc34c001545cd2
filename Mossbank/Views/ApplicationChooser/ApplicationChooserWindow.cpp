// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ApplicationChooser/ApplicationChooserWindow.h"

#include "Mossbank/Model/Texts.h"
#include "Mossbank/Views/ApplicationChooser/ApplicationChoices.h"
#include "Mossbank/Views/ApplicationIcons.h"
#include "MossbankCore/Support/Failure.h"

#include <QPromise>
#include <QQmlComponent>
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
        m_engine.addImportPath(u"qrc:/"_s);
        m_engine.addImageProvider(QString::fromUtf16(ApplicationIcons::kID), new ApplicationIcons);
        QQmlComponent component(
            &m_engine,
            QUrl(u"qrc:/Mossbank/Views/ApplicationChooser/ApplicationChooserView.qml"_s));
        if (component.isReady()) {
            m_window.reset(qobject_cast<QQuickWindow*>(component.createWithInitialProperties(
                {{u"choices"_s, QVariant::fromValue(&m_choices)}})));
        }
        if (!m_window)
            throw Failure(localized("The window could not be opened: %1")
                              .arg(component.errorString().simplified()));
    }
    ~Opened() override { end(std::nullopt); }

    QFuture<std::optional<Application>> answer() { return m_answer.future(); }

    bool hasEnded() const { return m_hasEnded; }

    void bringToFront()
    {
        m_window->raise();
        m_window->requestActivate();
    }

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
        m_opened->bringToFront();
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

// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/QuickWindow.h"

#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Support/Failure.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>

#include <mutex>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

/// Words and pictures that stand still ask nothing of a graphics card, whose driver would stay in
/// memory for as long as the program runs.
void drawInMemory()
{
    // Qt takes it once.
    static std::once_flag isChosen;
    std::call_once(isChosen, [] { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); });
}

} // namespace

std::unique_ptr<QQuickWindow> makeQuickWindow(QQmlEngine& engine, const QString& path,
                                              const QVariantMap& properties)
{
    drawInMemory();
    engine.addImportPath(u"qrc:/"_s);
    QQmlComponent component(&engine, QUrl(u"qrc:/Mossbank/Views/"_s + path));
    std::unique_ptr<QQuickWindow> window;
    if (component.isReady())
        window.reset(
            qobject_cast<QQuickWindow*>(component.createWithInitialProperties(properties)));
    if (!window)
        throw Failure(localized("The window could not be opened: %1")
                          .arg(component.errorString().simplified()));
    return window;
}

void bringToFront(QQuickWindow& window)
{
    window.show();
    window.setWindowStates(window.windowStates() & ~Qt::WindowMinimized);
    window.raise();
    window.requestActivate();
}

} // namespace mossbank

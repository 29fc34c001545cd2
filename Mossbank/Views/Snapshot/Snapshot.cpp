// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Snapshot/Snapshot.h"

#include "Mossbank/Views/QuickWindow.h"
#include "MossbankCore/Ports/Clock.h"

#include <QBuffer>
#include <QFile>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

QList<QQuickWindow*> visibleWindows()
{
    QList<QQuickWindow*> windows;
    for (QWindow* const window : QGuiApplication::topLevelWindows()) {
        auto* const quick = qobject_cast<QQuickWindow*>(window);
        if (quick && quick->isVisible())
            windows.append(quick);
    }
    return windows;
}

QQuickItem* sheetWithin(const QQuickWindow& window)
{
    auto* const sheet = window.property("sheet").value<QQuickItem*>();
    return sheet && sheet->isVisible() ? sheet : nullptr;
}

QImage picture(QQuickWindow& window, bool wantsSheet)
{
    QImage whole = window.grabWindow();
    const QQuickItem* const sheet = wantsSheet ? sheetWithin(window) : nullptr;
    if (!sheet || whole.isNull())
        return whole;
    const QRectF place = sheet->mapRectToScene(QRectF(0, 0, sheet->width(), sheet->height()));
    const double pixels = whole.devicePixelRatio();
    const QRect inPixels(qRound(place.x() * pixels), qRound(place.y() * pixels),
                         qRound(place.width() * pixels), qRound(place.height() * pixels));
    return whole.copy(inPixels & whole.rect());
}

} // namespace

Snapshot::Snapshot(SnapshotOptions options, Clock& clock, Appearance& appearance, QObject* parent)
    : QObject(parent)
    , m_options(std::move(options))
    , m_clock(clock)
    , m_appearance(appearance)
{
}

Snapshot::~Snapshot() = default;

void Snapshot::note(const QString& text) const
{
    const auto path = m_options.path();
    if (!path)
        return;
    QFile file(*path + u".log"_s);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        file.write(text.toUtf8() + '\n');
}

QQuickWindow* Snapshot::windowToDraw() const
{
    const QList<QQuickWindow*> visible = visibleWindows();
    const auto first = [&visible](const auto& isWanted) -> QQuickWindow* {
        const auto found = std::ranges::find_if(visible, isWanted);
        return found == visible.end() ? nullptr : *found;
    };
    QQuickWindow* window = nullptr;
    if (m_options.shows(u"enlarged")) {
        window = first([](const QQuickWindow* candidate) {
            return candidate->transientParent() || sheetWithin(*candidate);
        });
    }
    if (!window)
        window = first([](const QQuickWindow* candidate) {
            return candidate == QGuiApplication::focusWindow();
        });
    // Without a window manager none has the focus.
    if (!window)
        window = first(
            [](const QQuickWindow* candidate) { return candidate->objectName() == u"workspace"; });
    return window ? window : visible.value(0);
}

std::optional<QString> Snapshot::write(const QString& path) const
{
    QQuickWindow* const window = windowToDraw();
    if (!window)
        return u"no window to draw"_s;
    if (!window->isActive())
        bringToFront(*window);
    const QImage image = picture(*window, m_options.shows(u"enlarged"));
    if (image.isNull())
        return u"no bitmap for the view"_s;
    const auto bytes = encoded(image);
    if (!bytes)
        return u"the view would not encode"_s;
    QFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                           file.write(*bytes) == bytes->size() && file.flush();
    return isWritten ? std::nullopt : std::optional(file.errorString());
}

std::optional<QByteArray> Snapshot::encoded(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG"))
        return std::nullopt;
    return bytes;
}

void Snapshot::takeWhenAsked(bool enabled, std::function<void()> prepare)
{
    const auto path = m_options.path();
    if (enabled && path)
        m_taking = Job::start(&Snapshot::take, this, *path, std::move(prepare));
}

QCoro::Task<> Snapshot::take(QString path, std::function<void()> prepare, Cancellation cancellation)
{
    const double hold = m_options.hold();
    if (const auto mode = m_options.appearance())
        m_appearance.apply(*mode);
    if (!co_await m_clock.sleep(hold, cancellation))
        co_return;
    prepare();
    if (!co_await m_clock.sleep(hold, cancellation))
        co_return;
    if (const auto problem = write(path))
        Q_EMIT failed(*problem);
    Q_EMIT ended();
}

} // namespace mossbank

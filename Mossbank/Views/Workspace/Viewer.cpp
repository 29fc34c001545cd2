// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/Viewer.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Model/StoredPicture.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/FileManager.h"
#include "Mossbank/Views/Pictures/PictureProvider.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>

namespace mossbank {

using namespace Qt::StringLiterals;

Viewer::Viewer(const WorkspaceParts& parts, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
    , m_listing(parts.model.listing())
{
    for (const auto signal :
         {&Listing::selectedIDChanged, &Listing::memoriesChanged, &Listing::dayChanged})
        connect(&m_listing, signal, this, &Viewer::changed);
    connect(&m_listing, &Listing::showsEnlargedChanged, this, &Viewer::isEnlargedChanged);
}

const Memory* Viewer::selected() const
{
    return m_listing.selected();
}

bool Viewer::hasSelection() const
{
    return selected();
}

QString Viewer::app() const
{
    return selected() ? selected()->appName : QString();
}

QString Viewer::title() const
{
    const Memory* const memory = selected();
    if (!memory)
        return {};
    return memory->title.isEmpty() ? memory->appName
                                   : localized("%1 · %2").arg(memory->appName, memory->title);
}

QString Viewer::time() const
{
    const Memory* const memory = selected();
    if (!memory)
        return {};
    const Calendar calendar = m_parts.calendar();
    const QString time = m_listing.showsSecondsInStrip()
                             ? calendar.timeWithSeconds(memory->timestamp)
                             : calendar.shortTime(memory->timestamp);
    return m_listing.day()
               ? time
               : localized("%1, %2").arg(calendar.weekdayAndDay(memory->timestamp), time);
}

QString Viewer::filename() const
{
    return selected() ? selected()->filename : QString();
}

QUrl Viewer::screenshot() const
{
    return PictureProvider::screenshot(filename());
}

QString Viewer::text() const
{
    return selected() ? selected()->text : QString();
}

QString Viewer::link() const
{
    const QString link = selected() ? selected()->link : QString();
    const QString scheme = QUrl(link).scheme();
    // A library may have come from anywhere, and other schemes start other things than browsers.
    return scheme == u"http"_s || scheme == u"https"_s ? link : QString();
}

bool Viewer::canStepBack() const
{
    const auto& id = m_listing.selectedID();
    const auto at = id ? m_listing.position(*id) : std::nullopt;
    return at && (*at + 1 < m_listing.memories().size() || m_listing.canShowEarlier());
}

bool Viewer::canStepOn() const
{
    const auto& id = m_listing.selectedID();
    const auto at = id ? m_listing.position(*id) : std::nullopt;
    return at && *at > 0;
}

bool Viewer::isEnlarged() const
{
    return m_listing.showsEnlarged();
}

void Viewer::setEnlarged(bool isEnlarged)
{
    m_listing.setShowsEnlarged(isEnlarged);
}

void Viewer::stepBack()
{
    m_listing.step(-1);
}

void Viewer::stepOn()
{
    m_listing.step(1);
}

void Viewer::copyImage()
{
    if (const auto url = m_listing.imageURL())
        m_copying = Job::start(&Viewer::copy, this, url->toLocalFile());
}

QCoro::Task<> Viewer::copy(QString path, Cancellation cancellation)
{
    const QFuture<QImage> loading = StoredPicture::load(path, m_parts.model.vault());
    const QImage image = co_await awaited(loading);
    if (!cancellation.isRequested() && !image.isNull())
        QGuiApplication::clipboard()->setImage(image);
}

void Viewer::copyText() const
{
    QGuiApplication::clipboard()->setText(text());
}

void Viewer::showInFolder()
{
    if (const auto url = m_listing.imageURL())
        m_showing = Job::start(&Viewer::showFolder, this, *url);
}

QCoro::Task<> Viewer::showFolder(QUrl file, Cancellation cancellation)
{
    std::optional<QString> problem;
    try {
        const QFuture<void> showing = m_parts.fileManager.show(file);
        co_await awaited(showing);
    } catch (const Failure& failure) {
        problem = failure.message();
    }
    if (problem && !cancellation.isRequested())
        m_parts.model.recorder().setErrorMessage(
            localized("Could not show the screenshot in its folder: %1").arg(*problem));
}

void Viewer::openLink() const
{
    if (!link().isEmpty())
        QDesktopServices::openUrl(QUrl(link()));
}

void Viewer::remove()
{
    m_listing.deleteSelected();
}

} // namespace mossbank

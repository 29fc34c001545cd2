// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/FileShowing.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/FolderOpening.h"
#include "MossbankCore/Support/Background.h"
#include "MossbankCore/Support/Failure.h"

#include <QCoro/QCoroFuture>
#include <QCoro/QCoroSignal>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

struct Places {
    bool isFileThere = false;
    bool isFolderThere = false;
};

/// A disk may take its time.
QFuture<Places> lookFor(const QString& file, const QString& folder)
{
    return atOnce([file, folder] {
        return Places{QFileInfo::exists(file), QFileInfo(folder).isDir()};
    });
}

// Made in a function of its own: the compiler of Debian 12 loses lists within a `co_await`.
BusCall showCall(const QString& method, const QString& path)
{
    const QString service = u"org.freedesktop.FileManager1"_s;
    const QString address = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
    // The id of a start is that of the click, which Qt does not tell.
    const QString startupId;
    return {service,
            u"/org/freedesktop/FileManager1"_s,
            service,
            method,
            {QStringList{address}, startupId}};
}

} // namespace

FileShowing::FileShowing(QString file, const Limits& limits)
    : m_file(std::move(file))
    , m_folder(QFileInfo(m_file).absolutePath())
    , m_limits(limits)
{
}

QFuture<void> FileShowing::begin()
{
    m_promise.start();
    QFuture<void> future = m_promise.future();
    run();
    return future;
}

void FileShowing::stop()
{
    if (std::exchange(m_hasEnded, true))
        return;
    m_promise.future().cancel();
    m_promise.finish();
}

QCoro::Task<> FileShowing::run()
{
    const auto self = shared_from_this();
    const Places places = co_await lookFor(m_file, m_folder);
    if (m_hasEnded)
        co_return;
    if (!places.isFolderThere) {
        finish(u"the folder is no longer there"_s);
        co_return;
    }
    const bool isShown = co_await askFileManager(places.isFileThere);
    m_bus.close();
    if (m_hasEnded)
        co_return;
    QString problem;
    if (!isShown)
        problem = co_await openFolder();
    finish(problem);
}

/// Whether it says that it does.
QCoro::Task<bool> FileShowing::askFileManager(bool isFileThere)
{
    const QString address = sessionBusAddress();
    const int limit = static_cast<int>(m_limits.service.count());
    if (address.isEmpty())
        co_return false;
    if (!co_await m_bus.open(address, limit))
        co_return false;
    const BusCall call =
        isFileThere ? showCall(u"ShowItems"_s, m_file) : showCall(u"ShowFolders"_s, m_folder);
    const QDBusMessage answer = co_await m_bus.call(call, limit);
    co_return answer.type() == QDBusMessage::ReplyMessage;
}

/// Why it is not opened. Empty when it is being opened.
QCoro::Task<QString> FileShowing::openFolder()
{
    const QFuture<QString> opening = openWithDefault(m_folder);
    QFutureWatcher<QString> watcher;
    watcher.setFuture(opening);
    co_await qCoro(&watcher, &QFutureWatcher<QString>::finished, m_limits.opening);
    co_return opening.isFinished() ? opening.result() : u"the program for folders does not start"_s;
}

void FileShowing::finish(const QString& problem)
{
    if (std::exchange(m_hasEnded, true))
        return;
    if (!problem.isEmpty())
        m_promise.setException(Failure(u"%1 cannot be shown: %2."_s.arg(m_file, problem)));
    m_promise.finish();
}

} // namespace mossbank

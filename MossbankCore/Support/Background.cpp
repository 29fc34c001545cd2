// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Background.h"

#include <QThread>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace mossbank {

void giveWay()
{
    thread_local bool hasGivenWay = false;
    if (std::exchange(hasGivenWay, true))
        return;
#ifdef Q_OS_LINUX
    // Ordinary threads of Linux have no priorities but this one, which here is the thread's own.
    constexpr int kNice = 10;
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kNice);
#else
    QThread::currentThread()->setPriority(QThread::LowPriority);
#endif
}

QThreadPool& poolForTheUser()
{
    static QThreadPool pool;
    return pool;
}

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DesktopFileManager.h"

#include "MossbankCore/Support/Failure.h"

using namespace Qt::StringLiterals;

namespace mossbank {

DesktopFileManager::DesktopFileManager(const FileShowing::Limits& limits)
    : m_limits(limits)
{
}

DesktopFileManager::~DesktopFileManager()
{
    for (const auto& each : m_showings) {
        if (const auto showing = each.lock())
            showing->stop();
    }
}

QFuture<void> DesktopFileManager::show(const QUrl& file)
{
    if (!file.isLocalFile()) {
        return QtFuture::makeExceptionalFuture<void>(
            Failure(u"%1 is no file of this computer."_s.arg(file.toDisplayString())));
    }
    std::erase_if(m_showings, [](const auto& showing) { return showing.expired(); });
    const auto showing = std::make_shared<FileShowing>(file.toLocalFile(), m_limits);
    m_showings.push_back(showing);
    return showing->begin();
}

} // namespace mossbank

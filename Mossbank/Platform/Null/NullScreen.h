// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Screen.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

/// A screen that cannot be seen.
class NullScreen final : public Screen {
public:
    explicit NullScreen(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    bool isAllowed() const override { return false; }
    void askForPermission() override {}
    void openPermissions() override {}

    QStringList displayNames() const override { return {}; }
    QFuture<ScreenContent> content() override
    {
        return QtFuture::makeExceptionalFuture<ScreenContent>(Failure(m_reason));
    }
    QFuture<QImage> picture(PictureRequest) override
    {
        return QtFuture::makeExceptionalFuture<QImage>(Failure(m_reason));
    }

private:
    QString m_reason;
};

} // namespace mossbank

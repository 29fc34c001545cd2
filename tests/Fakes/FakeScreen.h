// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Screen.h"
#include "MossbankCore/Library/StoreError.h"

#include <QPromise>

#include <algorithm>
#include <functional>
#include <vector>

namespace mossbank {

/// A screen that shows what it is told. Its answers come at once, or when released while held.
class FakeScreen final : public Screen {
public:
    bool isAllowedNow = true;
    int timesAsked = 0;
    int timesOpened = 0;

    QStringList displayNamesNow = {QStringLiteral("Display")};
    ScreenContent contentNow = {
        .windows = {},
        .displays = {{.id = 1, .frame = QRect(0, 0, 320, 200)}},
        .mainDisplay = 1,
        .applications = {},
    };
    QImage pictureNow;
    /// When not empty, what an answer fails with.
    QString contentFailure;
    QString pictureFailure;

    std::vector<PictureRequest> requests;
    int contentsAsked = 0;

    /// Called when a picture is asked for, before it is given.
    std::function<void()> onPicture;

    bool holdsContent = false;
    bool holdsPicture = false;

    FakeScreen()
        : pictureNow(320, 200, QImage::Format_RGB32)
    {
        pictureNow.fill(Qt::white);
    }

    Availability availability() const override { return {}; }
    bool isAllowed() const override { return isAllowedNow; }
    void askForPermission() override { ++timesAsked; }
    void openPermissions() override { ++timesOpened; }

    QStringList displayNames() const override { return displayNamesNow; }

    QFuture<ScreenContent> content() override
    {
        ++contentsAsked;
        if (!contentFailure.isEmpty())
            return QtFuture::makeExceptionalFuture<ScreenContent>(StoreError(contentFailure));
        if (!holdsContent)
            return QtFuture::makeReadyFuture(contentNow);
        m_content = {};
        m_content.start();
        return m_content.future();
    }

    QFuture<QImage> picture(PictureRequest request) override
    {
        requests.push_back(request);
        if (onPicture)
            onPicture();
        if (!pictureFailure.isEmpty())
            return QtFuture::makeExceptionalFuture<QImage>(StoreError(pictureFailure));
        if (!hasDisplay(request.display))
            return QtFuture::makeExceptionalFuture<QImage>(Failure(QStringLiteral(
                "No display is available. Check your display connection and try again.")));
        if (!holdsPicture)
            return QtFuture::makeReadyFuture(pictureOf(request));
        m_picture = {};
        m_picture.start();
        return m_picture.future();
    }

    /// Lets go of the answer that was held back, without giving it.
    void giveContentUp() { m_content = {}; }

    /// Gives the answer that was held back.
    void releaseContent()
    {
        m_content.addResult(contentNow);
        m_content.finish();
    }
    void releasePicture()
    {
        m_picture.addResult(pictureOf(requests.back()));
        m_picture.finish();
    }

private:
    bool hasDisplay(DisplayID id) const
    {
        return std::ranges::any_of(contentNow.displays,
                                   [id](const Display& display) { return display.id == id; });
    }

    /// At the size asked for, if one is.
    QImage pictureOf(const PictureRequest& request) const
    {
        if (request.size.isEmpty() || request.size == pictureNow.size())
            return pictureNow;
        return pictureNow.scaled(request.size);
    }

    QPromise<ScreenContent> m_content;
    QPromise<QImage> m_picture;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/ApplicationChooser.h"
#include "MossbankCore/Support/Failure.h"

#include <QPromise>
#include <QStringList>

namespace mossbank {

/// The user chooses what the test says, at once or when released.
class FakeApplicationChooser final : public ApplicationChooser {
public:
    std::optional<Application> choiceNow;
    bool holds = false;
    /// When not empty, what choosing fails with.
    QString failure;
    QStringList titles;

    Availability availability() const override { return {}; }

    QFuture<std::optional<Application>> choose(const QString& title) override
    {
        titles.append(title);
        if (!failure.isEmpty())
            return QtFuture::makeExceptionalFuture<std::optional<Application>>(Failure(failure));
        if (!holds)
            return QtFuture::makeReadyFuture(choiceNow);
        if (m_choice.future().isRunning())
            return QtFuture::makeReadyFuture(std::optional<Application>());
        m_choice = {};
        m_choice.start();
        return m_choice.future();
    }

    void release()
    {
        m_choice.addResult(choiceNow);
        m_choice.finish();
    }

private:
    QPromise<std::optional<Application>> m_choice;
};

} // namespace mossbank

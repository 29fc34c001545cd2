// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Appearance.h"
#include "Mossbank/Ports/QuitQuestion.h"
#include "MossbankCore/Support/Failure.h"

#include <QList>
#include <QPromise>

#include <memory>
#include <utility>

namespace mossbank {

/// Remembers what it was told.
class FakeAppearance final : public Appearance {
public:
    QList<Mode> applied;

    void apply(Mode mode) override { applied.append(mode); }
};

/// A user who answers when told.
class FakeQuitQuestion final : public QuitQuestion {
public:
    /// How often the question was shown, the first time and again.
    int timesShown = 0;
    /// Whether there is no way to ask.
    bool isBroken = false;

    bool isOpen() const { return m_answer != nullptr; }

    QFuture<bool> isQuitMeant() override
    {
        ++timesShown;
        if (isBroken)
            return QtFuture::makeExceptionalFuture<bool>(Failure(QStringLiteral("No window.")));
        if (m_answer)
            return QtFuture::makeReadyFuture(false);
        m_answer = std::make_unique<QPromise<bool>>();
        m_answer->start();
        return m_answer->future();
    }

    void answer(bool isMeant)
    {
        const auto asked = std::exchange(m_answer, nullptr);
        asked->addResult(isMeant);
        asked->finish();
    }

private:
    std::unique_ptr<QPromise<bool>> m_answer;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/QuitQuestion.h"

#include <QPointer>

namespace mossbank {

/// Asks in a window of this program.
///
/// Threading: the main thread.
class QuitQuestionWindow final : public QuitQuestion {
public:
    QuitQuestionWindow() = default;
    ~QuitQuestionWindow() override;

    QFuture<bool> isQuitMeant() override;

private:
    class Opened;

    QPointer<Opened> m_opened;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFuture>

namespace mossbank {

/// Asks the user who ends the program while it is recording whether that is meant.
///
/// Threading: the main thread.
/// Errors: a Failure through the future where there is no way to ask.
class QuitQuestion {
public:
    QuitQuestion() = default;
    virtual ~QuitQuestion() = default;
    QuitQuestion(const QuitQuestion&) = delete;
    QuitQuestion& operator=(const QuitQuestion&) = delete;

    /// Whether it is. Not meant, when the user closes the question, and at once while it is being
    /// asked already, which brings it to the front.
    virtual QFuture<bool> isQuitMeant() = 0;
};

} // namespace mossbank

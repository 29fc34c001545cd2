// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Support/Failure.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QFuture>

#include <type_traits>

namespace mossbank {

/// `co_await awaited(future)` is the future's result, or throws what was thrown into it. Awaiting
/// the future itself would read a result that is not there when whoever promised it gave up; here
/// that is a Failure like any other.
template <typename T>
QCoro::Task<T> awaited(QFuture<T> future)
{
    co_await QFuture<void>(future);
    if (future.isCanceled())
        throw Failure(QStringLiteral("What was asked for was given up."));
    if constexpr (!std::is_void_v<T>)
        co_return future.result();
}

} // namespace mossbank

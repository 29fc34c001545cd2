// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"

#include <QCoroTask>

namespace mossbank {

/// What the rest of the model does when a screenshot has been saved, in the order below.
///
/// Threading: the main thread.
/// Errors: none; each reports its own.
class AfterSave {
public:
    AfterSave() = default;
    virtual ~AfterSave() = default;
    AfterSave(const AfterSave&) = delete;
    AfterSave& operator=(const AfterSave&) = delete;

    /// Has the record read for its meaning, where that is on. Returns without waiting for it.
    virtual void readForMeaning(const Memory& memory) = 0;
    /// Removes what is older than the user wants, at most once a minute.
    virtual QCoro::Task<> applyRetention() = 0;
    /// Brings the list on show up to date.
    virtual QCoro::Task<> refresh() = 0;
};

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace mossbank {

/// What is written as an exclusion and is none, told by its form alone: whether an application is
/// installed does not matter.
class ExclusionForm {
public:
    ExclusionForm() = delete;

    /// Whether an application may have this identity: no path, no pattern, no text of several
    /// words, nothing with a remark behind it.
    static bool isIdentity(const QString& text);

    /// Those that no application may have.
    static QStringList others(const QStringList& exclusions);

    /// Those in a remark behind the list that look as if they were meant to belong to it.
    static QStringList meant(const QString& remark);
};

} // namespace mossbank

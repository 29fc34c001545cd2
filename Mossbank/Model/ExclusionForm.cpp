// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/ExclusionForm.h"

#include <QRegularExpression>

#include <algorithm>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// As long as the name of a file may be.
constexpr qsizetype kLongest = 255;

} // namespace

bool ExclusionForm::isIdentity(const QString& text)
{
    const auto isForeign = [](QChar sign) {
        return sign.isSpace() || !sign.isPrint() || QStringView(u"/\\*?;#,=\"'<>|").contains(sign);
    };
    return !text.isEmpty() && text.size() <= kLongest && std::ranges::none_of(text, isForeign);
}

QStringList ExclusionForm::others(const QStringList& exclusions)
{
    QStringList found;
    std::ranges::remove_copy_if(exclusions, std::back_inserter(found), isIdentity);
    return found;
}

QStringList ExclusionForm::meant(const QString& remark)
{
    static const QRegularExpression kBetween(u"[;,]"_s);
    QStringList found;
    for (const QString& part : remark.split(kBetween)) {
        if (isIdentity(part.trimmed()))
            found.append(part.trimmed());
    }
    return found;
}

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/WindowTitle.h"

#include "MossbankCore/Support/Characters.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype kLongest = 160;

/// Between a document's name and its application's, in the order of their test.
constexpr std::array<QStringView, 4> kSeparators = {u" — ", u" – ", u" - ", u" | "};

/// For comparing: an accent written as a sign of its own is no difference to its reader.
QString comparable(QStringView text)
{
    return Characters::lowercased(text).normalized(QString::NormalizationForm_C);
}

bool isEmptyTitle(const QString& lowercased)
{
    static const QSet<QString> kEmpty = {
        u"untitled"_s, u"new tab"_s, u"new window"_s, u"start page"_s, u"-"_s, u"—"_s, u"–"_s};
    return kEmpty.contains(lowercased);
}

QStringView withoutApp(QStringView title, QStringView app)
{
    const QString lowerTitle = comparable(title);
    const QString lowerApp = comparable(app);
    for (const QStringView separator : kSeparators) {
        if (lowerTitle.endsWith(separator.toString() + lowerApp)) {
            const qsizetype ending = Characters::count(separator) + Characters::count(app);
            return Characters::dropLast(title, ending).trimmed();
        }
    }
    return title;
}

QStringView shortened(QStringView title)
{
    const QStringView first = Characters::prefix(title, kLongest);
    if (first.size() == title.size())
        return title;
    const auto characters = Characters::split(first);
    const auto blank = std::find(characters.rbegin(), characters.rend(), u" "_s);
    return blank == characters.rend() ? first : first.first(blank->data() - first.data());
}

} // namespace

std::optional<QString> WindowTitle::worthKeeping(QStringView title, QStringView app)
{
    const QStringView kept = withoutApp(title.trimmed(), app);
    const QString lowercased = comparable(kept);
    if (kept.isEmpty() || lowercased == comparable(app) || isEmptyTitle(lowercased))
        return std::nullopt;
    return shortened(kept).toString();
}

} // namespace mossbank

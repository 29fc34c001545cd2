// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Capture/WindowTitle.h"

#include "MossbankCore/Support/Characters.h"

#include <QSet>

#include <array>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype kLongest = 160;

/// Between a document's name and its application's, in the order of their test.
constexpr std::array<QStringView, 4> kSeparators = {u" — ", u" – ", u" - ", u" | "};

bool isEmptyTitle(const QString& lowercased)
{
    static const QSet<QString> kEmpty = {
        u"untitled"_s, u"new tab"_s, u"new window"_s, u"start page"_s, u"-"_s, u"—"_s, u"–"_s};
    return kEmpty.contains(lowercased);
}

QStringView withoutApp(QStringView title, QStringView app)
{
    const QString lowerTitle = Characters::lowercased(title);
    const QString lowerApp = Characters::lowercased(app);
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
    const qsizetype blank = first.lastIndexOf(u' ');
    return blank < 0 ? first : first.first(blank);
}

} // namespace

std::optional<QString> WindowTitle::worthKeeping(QStringView title, QStringView app)
{
    const QStringView kept = withoutApp(title.trimmed(), app);
    const QString lowercased = Characters::lowercased(kept);
    if (kept.isEmpty() || lowercased == Characters::lowercased(app) || isEmptyTitle(lowercased))
        return std::nullopt;
    return shortened(kept).toString();
}

} // namespace mossbank

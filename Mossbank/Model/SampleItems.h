// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Library/Memory.h"

#include <QList>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>

namespace mossbank {

/// A fictional screen: an application, its window, and what is written there.
struct SampleItem {
    QString app;
    QString bundleID;
    QString title;
    QStringList lines;

    /// The address of the page, where the application is a browser.
    QString link() const;
};

/// So many screenshots of a day so many days ago.
struct SampleDay {
    int daysAgo;
    int count;
};

const QList<SampleItem>& sampleItems();
const QList<SampleDay>& sampleDays();

/// Made-up screenshots one after the other, in which an application and its title stay for a while.
class ScaleRows {
public:
    explicit ScaleRows(const QRandomGenerator& random)
        : m_random(random)
    {
    }

    Memory next(Date timestamp);

private:
    template <typename T>
    const T& any(const QList<T>& list)
    {
        return list.at(m_random.bounded(static_cast<int>(list.size())));
    }
    QString words();

    QRandomGenerator m_random;
    SampleItem m_shown;
    /// How many more screenshots show the same.
    int m_left = 0;
};

} // namespace mossbank

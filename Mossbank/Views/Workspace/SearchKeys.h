// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

class QKeyEvent;
class QQuickItem;

namespace mossbank {

class Listing;

/// Some keys that are typed into the search field and are meant for the list, so that it can be
/// walked without leaving the field. All others go on to the field.
///
/// Threading: the main thread.
class SearchKeys : public QObject {
    Q_OBJECT

public:
    /// The listing outlives it. `field` may go before.
    SearchKeys(Listing& listing, QQuickItem& field, QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool letGo(QKeyEvent& key) const;
    bool take(const QKeyEvent& key);

    Listing& m_listing;
};

} // namespace mossbank

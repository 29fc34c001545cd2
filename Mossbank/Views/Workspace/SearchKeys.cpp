// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/SearchKeys.h"

#include "Mossbank/Views/Workspace/ShownLens.h"

#include <QKeyEvent>
#include <QQuickItem>

namespace mossbank {

SearchKeys::SearchKeys(Listing& listing, QQuickItem& field, QObject* parent)
    : QObject(parent)
    , m_listing(listing)
{
    // The field that is looked at has the keys; one without the focus is sent none.
    field.installEventFilter(this);
}

bool SearchKeys::eventFilter(QObject*, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride)
        return letGo(*static_cast<QKeyEvent*>(event));
    return event->type() == QEvent::KeyPress && take(*static_cast<QKeyEvent*>(event));
}

/// In an empty field there are no words to go by, and the window's own keys count.
bool SearchKeys::letGo(QKeyEvent& key) const
{
    const bool isStep = key.modifiers() == Qt::ControlModifier &&
                        (key.key() == Qt::Key_Left || key.key() == Qt::Key_Right);
    if (!isStep || !m_listing.query().isEmpty())
        return false;
    key.ignore();
    return true;
}

/// Whether the list has taken it.
bool SearchKeys::take(const QKeyEvent& key)
{
    const auto modifiers = key.modifiers() & ~Qt::KeypadModifier;
    if (modifiers != Qt::NoModifier || shownLens(m_listing) == Listing::Lens::Ask)
        return false;
    switch (key.key()) {
    case Qt::Key_Up:
        m_listing.step(1);
        return true;
    case Qt::Key_Down:
        m_listing.step(-1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!m_listing.selected())
            return false;
        m_listing.setShowsEnlarged(true);
        return true;
    case Qt::Key_Escape:
        if (m_listing.query().isEmpty())
            return false;
        m_listing.setQuery({});
        return true;
    default:
        return false;
    }
}

} // namespace mossbank

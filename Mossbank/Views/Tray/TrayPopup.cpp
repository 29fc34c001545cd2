// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Tray/TrayPopup.h"

#include <QAction>
#include <QGuiApplication>
#include <QPalette>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// The desktop's own colours, but that what cannot be chosen can be read: what the recorder did
/// last is in no other place while no window is open.
QPalette legible(QPalette palette)
{
    constexpr float kOfText = 0.6F;
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor base = palette.color(QPalette::Active, QPalette::Window);
    const auto mixed = [&](float one, float other) {
        return kOfText * one + (1 - kOfText) * other;
    };
    const QColor faint =
        QColor::fromRgbF(mixed(text.redF(), base.redF()), mixed(text.greenF(), base.greenF()),
                         mixed(text.blueF(), base.blueF()));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    return palette;
}

} // namespace

TrayPopup::TrayPopup(QObject* parent)
    : QObject(parent)
{
    // Whether the desktop is light or dark may have changed meanwhile.
    connect(&m_menu, &QMenu::aboutToShow, this,
            [this] { m_menu.setPalette(legible(QGuiApplication::palette())); });
}

TrayPopup::~TrayPopup() = default;

void TrayPopup::show(const QList<TrayEntry>& entries)
{
    if (m_menu.actions().isEmpty())
        build(m_menu, entries);
    update(m_menu, entries);
}

void TrayPopup::build(QMenu& menu, const QList<TrayEntry>& entries)
{
    for (const TrayEntry& entry : entries) {
        if (!entry.entries.isEmpty()) {
            m_submenus.push_back(std::make_unique<QMenu>());
            menu.addMenu(m_submenus.back().get());
            build(*m_submenus.back(), entry.entries);
        } else if (entry.isDivider) {
            menu.addSeparator();
        } else {
            QAction* const action = menu.addAction(QString());
            connect(action, &QAction::triggered, this,
                    [this, choice = entry.choice] { Q_EMIT chosen(choice); });
        }
    }
}

void TrayPopup::update(const QMenu& menu, const QList<TrayEntry>& entries)
{
    const QList<QAction*> actions = menu.actions();
    for (qsizetype number = 0; number < actions.size(); ++number) {
        QAction& action = *actions.at(number);
        const TrayEntry& entry = entries.at(number);
        action.setText(written(entry.title));
        action.setEnabled(entry.isEnabled);
        action.setVisible(entry.isVisible);
        if (QMenu* const submenu = action.menu()) {
            update(*submenu, entry.entries);
            // It would stay where it is open.
            if (!entry.isVisible)
                submenu->hide();
        }
    }
}

/// An ampersand stands for a key in Qt's menus. In those of a panel the underscore does, and Qt
/// makes one of the first ampersand alone.
QString TrayPopup::written(const QString& title)
{
    QString text = title;
    if (!m_menu.platformMenu())
        return text.replace(u"&"_s, u"&&"_s);
    text.replace(u"_"_s, u"__"_s);
    const qsizetype first = text.indexOf(u'&');
    return first < 0 ? text : text.insert(first, u'&');
}

} // namespace mossbank

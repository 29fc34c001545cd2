// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ScreenSavers.h"

#include <QMap>
#include <QString>

#include <algorithm>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

/// Each by its service, with the path at which it answers.
const QMap<QString, QString>& paths()
{
    static const QMap<QString, QString> kPaths = {
        {u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s},
        {u"org.gnome.ScreenSaver"_s, u"/org/gnome/ScreenSaver"_s},
        {u"org.cinnamon.ScreenSaver"_s, u"/org/cinnamon/ScreenSaver"_s},
        {u"org.mate.ScreenSaver"_s, u"/org/mate/ScreenSaver"_s},
        {u"org.xfce.ScreenSaver"_s, u"/org/xfce/ScreenSaver"_s},
    };
    return kPaths;
}

} // namespace

ScreenSavers::ScreenSavers(QObject* parent)
    : QObject(parent)
    , m_bus(QDBusConnection::SessionBus)
{
    if (!m_bus->isConnected())
        return;
    for (const auto& [service, path] : paths().asKeyValueRange()) {
        m_savers.push_back(std::make_unique<ScreenSaver>(m_bus, service, path));
        connect(m_savers.back().get(), &ScreenSaver::activeChanged, this,
                &ScreenSavers::activeChanged);
    }
    // What is so now has to be known before the first look at the screen.
    for (const auto& saver : m_savers)
        saver->ask();
    for (const auto& saver : m_savers)
        saver->hearAtOnce();
}

bool ScreenSavers::isThere() const
{
    return m_bus->isConnected() &&
           std::ranges::any_of(m_savers, [](const auto& saver) { return saver->isThere(); });
}

bool ScreenSavers::isActive() const
{
    return m_bus->isConnected() &&
           std::ranges::any_of(m_savers, [](const auto& saver) { return saver->isActive(); });
}

} // namespace mossbank

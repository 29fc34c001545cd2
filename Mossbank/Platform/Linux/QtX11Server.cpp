// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/QtX11Server.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

namespace mossbank {

QtX11Server::QtX11Server()
{
    const auto* const application =
        qobject_cast<const QGuiApplication*>(QCoreApplication::instance());
    if (!application)
        return;
    if (const auto* const x11 = application->nativeInterface<QNativeInterface::QX11Application>())
        m_connection = x11->connection();
}

bool QtX11Server::hasGone() const
{
    return m_connection && xcb_connection_has_error(m_connection) != 0;
}

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11Screen.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QCoreApplication>
#include <QTest>

#include <memory>

namespace mossbank::test {

inline const QString kOwn = QString::fromUtf16(kOwnBundleID);
inline const QString kAlpha = QStringLiteral("org.example.Alpha");
inline const QString kBeta = QStringLiteral("org.example.Beta");
inline const QString kGamma = QStringLiteral("org.example.Gamma");

/// The program itself, as the screen knows it in these tests: this process.
inline OwnProgram ownProgram()
{
    return {QCoreApplication::applicationPid(), kOwn};
}

inline std::unique_ptr<X11Screen> makeScreen()
{
    return std::make_unique<X11Screen>(std::make_shared<ApplicationCatalog>(), ownProgram());
}

/// A picture of the main display with windows of these applications only, at its own size.
inline QImage pictureOf(Screen& screen, const QStringList& included,
                        const QStringList& excluded = {})
{
    const ScreenContent content = screen.content().result();
    return screen.picture({content.mainDisplay.value_or(0), included, {}, excluded}).result();
}

} // namespace mossbank::test

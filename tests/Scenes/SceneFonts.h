// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

namespace mossbank::test {

/// The families that made screens are set in. Another family in place of a missing one would make
/// another picture of the same seed, so none is ever substituted.
/// Threading: the thread of the QGuiApplication.
const QStringList& plainFamilies();
const QStringList& serifFamilies();
const QStringList& codeFamilies();

/// Which of these families are not among those installed, and the packages that have them, in
/// sentences; empty when all are there.
QString missingFonts(const QStringList& installed);
QString missingFonts();

/// Throws std::runtime_error with a sentence naming the package where the family is missing.
QFont sceneFont(const QString& family, int pixels);

} // namespace mossbank::test

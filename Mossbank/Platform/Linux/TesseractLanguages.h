// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace mossbank {

/// Tesseract's name for a language given as a BCP 47 code: "en-GB" is "eng", "zh-Hant" is
/// "chi_tra". Empty for what is no language.
QString tesseractLanguage(const QString& code);

/// The Debian package that has the model of one of Tesseract's languages.
QString tesseractPackage(const QString& language);

/// English, what the user's locale names, and Turkish, with which Mossbank comes, as Tesseract
/// names them, each once.
QStringList tesseractLanguagesOfUser();

} // namespace mossbank

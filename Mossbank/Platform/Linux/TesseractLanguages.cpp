// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/TesseractLanguages.h"

#include <QHash>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace mossbank {

QString tesseractLanguage(const QString& code)
{
    const QLocale locale(code);
    // A language that Qt has no name for may have a model all the same, under its own three
    // letters.
    const QString subtag = code.section(u'-', 0, 0).section(u'_', 0, 0);
    if (locale.language() == QLocale::C)
        return subtag.size() == 3 ? subtag.toLower() : QString();
    const QString three = QLocale::languageToCode(locale.language(), QLocale::ISO639Part3);
    if (three == "zho"_L1) {
        return locale.script() == QLocale::TraditionalHanScript ? u"chi_tra"_s : u"chi_sim"_s;
    }
    // Where one language is written in two scripts, each has a model; and a few go by the name
    // of the larger language that they belong to.
    if (three == "srp"_L1 && locale.script() == QLocale::LatinScript)
        return u"srp_latn"_s;
    if (three == "aze"_L1 && locale.script() == QLocale::CyrillicScript)
        return u"aze_cyrl"_s;
    if (three == "uzb"_L1 && locale.script() == QLocale::CyrillicScript)
        return u"uzb_cyrl"_s;
    if (three == "nob"_L1 || three == "nno"_L1)
        return u"nor"_s;
    if (three == "kur"_L1)
        return u"kmr"_s;
    return three;
}

QString tesseractPackage(const QString& language)
{
    return u"tesseract-ocr-"_s + QString(language).replace(u'_', u'-');
}

QStringList tesseractLanguagesOfUser()
{
    QStringList languages = {u"eng"_s};
    const QLocale locale = QLocale::system();
    for (const QString& code : QStringList(locale.name()) + locale.uiLanguages()) {
        const QString language = tesseractLanguage(code);
        if (!language.isEmpty() && !languages.contains(language))
            languages.append(language);
    }
    if (!languages.contains(u"tur"_s))
        languages.append(u"tur"_s);
    return languages;
}

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/SceneFonts.h"

#include <QFontDatabase>
#include <QHash>

#include <stdexcept>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

QString packageOf(const QString& family)
{
    static const QHash<QString, QString> kPackages = {
        {u"DejaVu Sans"_s, u"fonts-dejavu-core"_s},
        {u"DejaVu Sans Mono"_s, u"fonts-dejavu-core"_s},
        {u"DejaVu Serif"_s, u"fonts-dejavu-core"_s},
        {u"Liberation Sans"_s, u"fonts-liberation2"_s},
        {u"Liberation Serif"_s, u"fonts-liberation2"_s},
        {u"Liberation Mono"_s, u"fonts-liberation2"_s},
        {u"Inter"_s, u"fonts-inter"_s},
        {u"Open Sans"_s, u"fonts-open-sans"_s},
        {u"Roboto"_s, u"fonts-roboto-unhinted"_s},
        {u"Fira Code"_s, u"fonts-firacode"_s},
        {u"Hack"_s, u"fonts-hack"_s},
        {u"JetBrains Mono"_s, u"fonts-jetbrains-mono"_s},
    };
    return kPackages.value(family, u"that has it"_s);
}

QString complaint(const QString& family)
{
    return u"The font %1 is missing: install the package %2."_s.arg(family, packageOf(family));
}

const QStringList& installedFamilies()
{
    static const QStringList kInstalled = QFontDatabase::families();
    return kInstalled;
}

} // namespace

const QStringList& plainFamilies()
{
    static const QStringList kFamilies = {u"DejaVu Sans"_s, u"Liberation Sans"_s, u"Inter"_s,
                                          u"Open Sans"_s, u"Roboto"_s};
    return kFamilies;
}

const QStringList& serifFamilies()
{
    static const QStringList kFamilies = {u"Liberation Serif"_s, u"DejaVu Serif"_s};
    return kFamilies;
}

const QStringList& codeFamilies()
{
    static const QStringList kFamilies = {u"DejaVu Sans Mono"_s, u"Liberation Mono"_s,
                                          u"Fira Code"_s, u"Hack"_s, u"JetBrains Mono"_s};
    return kFamilies;
}

QString missingFonts(const QStringList& installed)
{
    QStringList complaints;
    for (const QString& family : plainFamilies() + serifFamilies() + codeFamilies()) {
        if (!installed.contains(family))
            complaints += complaint(family);
    }
    return complaints.join(u' ');
}

QString missingFonts()
{
    return missingFonts(installedFamilies());
}

QFont sceneFont(const QString& family, int pixels)
{
    if (!installedFamilies().contains(family))
        throw std::runtime_error(complaint(family).toStdString());
    QFont font(family);
    font.setPixelSize(pixels);
    return font;
}

} // namespace mossbank::test

// SPDX-License-Identifier: Apache-2.0
//
//   scene_maker DIR --seeds FIRST LAST     writes every layout with each of these seeds into DIR:
//                                          the picture as PNG, the words on it as TXT.
#include "tests/Scenes/Scene.h"
#include "tests/Scenes/SceneFonts.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTextStream>

#include <cstdlib>

namespace {

using namespace Qt::StringLiterals;
using mossbank::test::Scene;

int complain(const QString& what)
{
    QTextStream(stderr) << what << Qt::endl;
    return EXIT_FAILURE;
}

bool write(const QDir& folder, const Scene& scene)
{
    QFile text(folder.filePath(scene.name + u".txt"_s));
    const QByteArray words = scene.words.join(u' ').toUtf8() + '\n';
    return scene.image.save(folder.filePath(scene.name + u".png"_s)) &&
           text.open(QIODevice::WriteOnly) && text.write(words) == words.size();
}

int makeAll(const QDir& folder, quint32 first, quint32 last)
{
    int made = 0;
    for (quint32 seed = first; seed <= last; ++seed) {
        for (const mossbank::test::Layout layout : mossbank::test::allLayouts()) {
            const Scene scene = mossbank::test::makeScene(layout, seed);
            if (!write(folder, scene))
                return complain(folder.filePath(scene.name) + u" cannot be written."_s);
            ++made;
        }
    }
    QTextStream(stdout) << made << " scenes" << Qt::endl;
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    bool isFirst = false;
    bool isLast = false;
    const quint32 first = arguments.value(3).toUInt(&isFirst);
    const quint32 last = arguments.value(4).toUInt(&isLast);
    if (arguments.size() != 5 || arguments[2] != u"--seeds" || !isFirst || !isLast || last < first)
        return complain(u"usage: scene_maker DIR --seeds FIRST LAST"_s);
    if (const QString missing = mossbank::test::missingFonts(); !missing.isEmpty())
        return complain(missing);
    const QDir folder(arguments[1]);
    if (!folder.mkpath(u"."_s))
        return complain(folder.path() + u" cannot be made."_s);
    return makeAll(folder, first, last);
}

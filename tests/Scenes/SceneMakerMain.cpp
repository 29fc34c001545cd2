// SPDX-License-Identifier: Apache-2.0
//
// scene_maker DIR --seeds FIRST LAST [LAYOUT...] [--size WxH]
//     writes every layout, or those named, with each of these seeds into DIR: the picture as PNG,
//     the words on it as TXT. Without --size a seed has a size of its own.
#include "tests/Scenes/Scene.h"
#include "tests/Scenes/SceneFonts.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTextStream>

#include <algorithm>
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

struct Wanted {
    quint32 first = 0;
    quint32 last = 0;
    /// None: all.
    QStringList layouts;
    std::optional<QSize> size;
};

int makeAll(const QDir& folder, const Wanted& wanted)
{
    int made = 0;
    for (quint32 seed = wanted.first; seed <= wanted.last; ++seed) {
        for (const mossbank::test::Layout layout : mossbank::test::allLayouts()) {
            const QString name = mossbank::test::layoutName(layout);
            if (!wanted.layouts.isEmpty() && !wanted.layouts.contains(name))
                continue;
            const Scene scene = mossbank::test::makeScene(layout, seed, wanted.size);
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
    QStringList arguments = QGuiApplication::arguments();
    Wanted wanted;
    bool isRight = true;
    if (const qsizetype at = arguments.indexOf(u"--size"); at >= 0) {
        wanted.size = mossbank::test::sizeIn(arguments.value(at + 1));
        isRight = wanted.size.has_value();
        arguments.remove(at, std::min<qsizetype>(2, arguments.size() - at));
    }
    bool isFirst = false;
    bool isLast = false;
    wanted.first = arguments.value(3).toUInt(&isFirst);
    wanted.last = arguments.value(4).toUInt(&isLast);
    wanted.layouts = arguments.mid(5);
    isRight = isRight && arguments.value(2) == u"--seeds" && isFirst && isLast &&
              wanted.last >= wanted.first;
    for (const mossbank::test::Layout layout : mossbank::test::allLayouts())
        arguments.removeAll(mossbank::test::layoutName(layout));
    if (!isRight || arguments.size() != 5) {
        return complain(u"usage: scene_maker DIR --seeds FIRST LAST [LAYOUT...] [--size WxH]"_s);
    }
    if (const QString missing = mossbank::test::missingFonts(); !missing.isEmpty())
        return complain(missing);
    const QDir folder(arguments[1]);
    if (!folder.mkpath(u"."_s))
        return complain(folder.path() + u" cannot be made."_s);
    return makeAll(folder, wanted);
}

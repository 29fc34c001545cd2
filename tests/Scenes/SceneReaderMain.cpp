// SPDX-License-Identifier: Apache-2.0
//
// scene_reader --seeds FIRST LAST [--misses] [LAYOUT...]
//     makes scenes, reads them, prints how well
//
// scene_reader DIR [--misses]
//     the same of pictures DIR/*.png whose words stand in DIR/*.txt
//
// A line of JSON for each picture, and one for all. With --misses also the words that were missed
// and those that are not there: for seeds that the reader may be tuned on, not for those held back.
#include "Mossbank/Platform/PlatformFactory.h"
#include "tests/Scenes/ReadScene.h"
#include "tests/Scenes/Scene.h"
#include "tests/Scenes/SceneFonts.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <exception>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr quint32 kFirstHeldBack = 100;

int complain(const QString& about)
{
    std::fprintf(stderr, "scene_reader: %s\n", qPrintable(about));
    return EXIT_FAILURE;
}

void print(const QJsonObject& object)
{
    std::puts(QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

QStringList wordsIn(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).simplified().split(u' ');
}

/// Reads pictures one after the other and prints what came of each.
class Reading {
public:
    explicit Reading(bool tellsMisses)
        : m_recognizer(makeTextRecognizer())
        , m_tellsMisses(tellsMisses)
    {
    }

    void read(const QString& name, const QImage& image, const QStringList& words)
    {
        m_scenes += readScene(name, image, words, *m_recognizer);
        const ReadScene& scene = m_scenes.last();
        QJsonObject figures = {{u"scene"_s, name},
                               {u"found"_s, scene.score.found},
                               {u"junk"_s, scene.score.junkPerHundred},
                               {u"ms"_s, scene.milliseconds}};
        if (m_tellsMisses) {
            figures[u"missed"_s] = QJsonArray::fromStringList(scene.score.missed);
            figures[u"junk_words"_s] = QJsonArray::fromStringList(scene.score.junk);
        }
        print(figures);
    }

    void printAll() const
    {
        const ReadScenes all = taken(m_scenes);
        print({{u"scenes"_s, m_scenes.size()},
               {u"mean_found"_s, all.meanFound},
               {u"worst_found"_s, all.worstFound},
               {u"worst"_s, all.worst},
               {u"mean_junk"_s, all.meanJunk},
               {u"most_junk"_s, all.mostJunk}});
    }

private:
    std::unique_ptr<TextRecognizer> m_recognizer;
    bool m_tellsMisses;
    QList<ReadScene> m_scenes;
};

void readSeeds(Reading& reading, quint32 first, quint32 last, const QStringList& layouts)
{
    for (quint32 seed = first; seed <= last; ++seed) {
        for (const Layout layout : allLayouts()) {
            if (!layouts.isEmpty() && !layouts.contains(layoutName(layout)))
                continue;
            const Scene scene = makeScene(layout, seed);
            reading.read(scene.name, scene.image, scene.words);
        }
    }
}

int run(QStringList arguments)
{
    const bool tellsMisses = arguments.removeAll(u"--misses"_s) > 0;
    Reading reading(tellsMisses);
    if (arguments.size() >= 3 && arguments[0] == u"--seeds") {
        const quint32 last = arguments[2].toUInt();
        if (tellsMisses && last >= kFirstHeldBack)
            return complain(u"what is missed of seeds held back is not told."_s);
        if (const QString missing = missingFonts(); !missing.isEmpty())
            return complain(missing);
        readSeeds(reading, arguments[1].toUInt(), last, arguments.mid(3));
    } else if (arguments.size() == 1) {
        const QDir folder(arguments[0]);
        for (const QString& file : folder.entryList({u"*.png"_s}, QDir::Files, QDir::Name)) {
            const QString name = file.chopped(4);
            reading.read(name, QImage(folder.filePath(file)),
                         wordsIn(folder.filePath(name + u".txt"_s)));
        }
    } else {
        return complain(u"usage: scene_reader DIR | --seeds FIRST LAST [LAYOUT...] [--misses]"_s);
    }
    reading.printAll();
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    try {
        return run(QGuiApplication::arguments().mid(1));
    } catch (const std::exception& failure) {
        return complain(QString::fromUtf8(failure.what()));
    }
}

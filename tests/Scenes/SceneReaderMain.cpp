// SPDX-License-Identifier: Apache-2.0
//
// scene_reader --seeds FIRST LAST [--misses] [--stock] [--size WxH] [LAYOUT...]
//     makes scenes, reads them, prints how well
//
// scene_reader DIR [--misses] [--stock]
//     the same of pictures DIR/*.png whose words stand in DIR/*.txt
//
// A line of JSON for each picture, and one for all. With --misses also the words that were missed
// and those that are not there: for seeds that the reader may be tuned on, not for those held back.
// With --stock each is also read by `tesseract FILE - -l eng+tur`, a process of its own.
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
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <exception>
#include <stdexcept>

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

/// Reads a picture as the program `tesseract` does when nothing is prepared for it.
class StockRecognizer final : public TextRecognizer {
public:
    TextRecognizer::Reading read(const QImage& image, const Options&) override
    {
        const QString path = m_folder.filePath(u"picture.png"_s);
        QProcess stock;
        if (image.save(path))
            stock.start(u"tesseract"_s, {path, u"-"_s, u"-l"_s, u"eng+tur"_s});
        stock.waitForFinished(-1);
        if (stock.error() != QProcess::UnknownError || stock.exitCode() != 0)
            throw std::runtime_error("package tesseract-ocr or a language of it is missing");
        return {QString::fromUtf8(stock.readAllStandardOutput()).split(u'\n')};
    }
    void rest() override {}

private:
    QTemporaryDir m_folder;
};

/// What is asked for besides.
struct Ways {
    bool tellsMisses = false;
    bool readsWithStock = false;
};

/// Reads pictures one after the other and prints what came of each.
class Reading {
public:
    explicit Reading(const Ways& ways)
        : m_recognizer(makeTextRecognizer())
        , m_ways(ways)
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
        if (m_ways.tellsMisses) {
            figures[u"missed"_s] = QJsonArray::fromStringList(scene.score.missed);
            figures[u"junk_words"_s] = QJsonArray::fromStringList(scene.score.junk);
        }
        if (m_ways.readsWithStock) {
            m_stockScenes += readScene(name, image, words, m_stock);
            const ReadScene& stock = m_stockScenes.last();
            figures[u"stock_found"_s] = stock.score.found;
            figures[u"stock_junk"_s] = stock.score.junkPerHundred;
            figures[u"stock_ms"_s] = stock.milliseconds;
        }
        print(figures);
    }

    void printAll() const
    {
        printTaken(u"all"_s, m_scenes);
        if (m_ways.readsWithStock)
            printTaken(u"all by the stock"_s, m_stockScenes);
    }

private:
    static void printTaken(const QString& what, const QList<ReadScene>& scenes)
    {
        const ReadScenes all = taken(scenes);
        print({{u"what"_s, what},
               {u"scenes"_s, scenes.size()},
               {u"mean_found"_s, all.meanFound},
               {u"worst_found"_s, all.worstFound},
               {u"worst"_s, all.worst},
               {u"mean_junk"_s, all.meanJunk},
               {u"most_junk"_s, all.mostJunk}});
    }

    std::unique_ptr<TextRecognizer> m_recognizer;
    StockRecognizer m_stock;
    Ways m_ways;
    QList<ReadScene> m_scenes;
    QList<ReadScene> m_stockScenes;
};

void readSeeds(Reading& reading, quint32 first, quint32 last, const QStringList& layouts,
               std::optional<QSize> size)
{
    for (quint32 seed = first; seed <= last; ++seed) {
        for (const Layout layout : allLayouts()) {
            if (!layouts.isEmpty() && !layouts.contains(layoutName(layout)))
                continue;
            const Scene scene = makeScene(layout, seed, size);
            reading.read(scene.name, scene.image, scene.words);
        }
    }
}

int run(QStringList arguments)
{
    const Ways ways = {.tellsMisses = arguments.removeAll(u"--misses"_s) > 0,
                       .readsWithStock = arguments.removeAll(u"--stock"_s) > 0};
    std::optional<QSize> size;
    if (const qsizetype at = arguments.indexOf(u"--size"); at >= 0) {
        size = sizeIn(arguments.value(at + 1));
        if (!size)
            return complain(u"--size wants a width and a height, as 1920x1080."_s);
        arguments.remove(at, 2);
    }
    Reading reading(ways);
    if (arguments.size() >= 3 && arguments[0] == u"--seeds") {
        const quint32 last = arguments[2].toUInt();
        if (ways.tellsMisses && last >= kFirstHeldBack)
            return complain(u"what is missed of seeds held back is not told."_s);
        if (const QString missing = missingFonts(); !missing.isEmpty())
            return complain(missing);
        readSeeds(reading, arguments[1].toUInt(), last, arguments.mid(3), size);
    } else if (arguments.size() == 1) {
        const QDir folder(arguments[0]);
        for (const QString& file : folder.entryList({u"*.png"_s}, QDir::Files, QDir::Name)) {
            const QString name = file.chopped(4);
            reading.read(name, QImage(folder.filePath(file)),
                         wordsIn(folder.filePath(name + u".txt"_s)));
        }
    } else {
        return complain(
            u"usage: scene_reader DIR | --seeds FIRST LAST [LAYOUT...] [--size WxH], [--misses] [--stock]"_s);
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

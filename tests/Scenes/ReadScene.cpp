// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/ReadScene.h"

#include "MossbankCore/Ports/TextRecognizer.h"

#include <QElapsedTimer>

#include <algorithm>

namespace mossbank::test {

ReadScene readScene(const QString& name, const QImage& image, const QStringList& words,
                    TextRecognizer& recognizer)
{
    QElapsedTimer timer;
    timer.start();
    const QString read = recognizer.recognize(image, {}).join(u'\n');
    return {.name = name,
            .words = words,
            .read = read,
            .score = score(words, read),
            .milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6};
}

ReadScenes taken(const QList<ReadScene>& scenes)
{
    ReadScenes all;
    if (scenes.isEmpty())
        return all;
    all.meanFound = 0;
    for (const ReadScene& scene : scenes) {
        all.meanFound += scene.score.found / static_cast<double>(scenes.size());
        all.meanJunk += scene.score.junkPerHundred / static_cast<double>(scenes.size());
        all.mostJunk = std::max(all.mostJunk, scene.score.junkPerHundred);
        if (all.worst.isEmpty() || scene.score.found < all.worstFound) {
            all.worst = scene.name;
            all.worstFound = scene.score.found;
        }
    }
    return all;
}

} // namespace mossbank::test

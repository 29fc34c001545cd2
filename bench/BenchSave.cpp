// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchSave.h"

#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"
#include "bench/SyntheticLibrary.h"

#include <QTemporaryDir>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr int kSaves = 200;

void measure(const QString& folder, int rows)
{
    const QString root = folder + u"/library"_s;
    const QString baseline = folder + u"/baseline"_s;
    for (const QString& library : {root, baseline}) {
        SyntheticScreenshots screenshots;
        makeLibrary(library, rows, screenshots);
    }
    SyntheticScreenshots screenshots;
    const QByteArray picture = screenshots.noise(SyntheticScreenshots::kPictureBytes);
    HistoryStore store(HistoryStore::Writing{.root = root});
    BareDatabase bare(baseline + u"/history.sqlite"_s);
    QList<Memory> memories;
    for (int round = 0; round < kSaves; ++round)
        memories.append(screenshots.next(rows + round));
    const auto save = [&](int round) {
        store.save(memories.at(round), picture).waitForFinished();
    };
    const auto saveBarely = [&](int round) {
        bare.save(baseline, memories.at(round), picture);
    };
    const PairedTimes paired = sideBySide(kSaves, save, saveBarely);
    constexpr double kHigh = 0.99;
    const QJsonObject what = {
        {u"bench"_s, u"save"_s},
        {u"rows"_s, rows},
        {u"saves"_s, kSaves},
        {u"p99_ms"_s, rounded(quantile(paired.times, kHigh))},
        {u"baseline_p99_ms"_s, rounded(quantile(paired.baseline, kHigh))},
    };
    printTimes(what, paired);
}

} // namespace

int benchSave(const QStringList& arguments)
{
    bool isNumber = false;
    const int rows = arguments.value(1).toInt(&isNumber);
    if (arguments.size() != 2 || arguments.first() != u"--rows"_s || !isNumber || rows < 0) {
        return benchWrongUse("save --rows N");
    }
    try {
        const QTemporaryDir folder;
        measure(folder.path(), rows);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return 0;
}

} // namespace mossbank

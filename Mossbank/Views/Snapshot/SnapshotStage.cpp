// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Snapshot/SnapshotStage.h"

#include "Mossbank/Model/AppModel.h"
#include "Mossbank/Views/Snapshot/Snapshot.h"

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

void filter(const SnapshotOptions& options, Listing& listing)
{
    if (const auto days = options.dayShift())
        listing.shiftDay(*days);
    if (options.shows(u"all-history"))
        listing.setDay(std::nullopt);
    if (const auto app = options.app())
        listing.setAppFilter(*app);
    if (const auto query = options.query())
        listing.setQuery(*query);
}

} // namespace

void prepareWorkspace(const Snapshot& snapshot, AppModel& model, const SnapshotStage& stage)
{
    const SnapshotOptions& options = snapshot.options();
    Listing& listing = model.listing();
    const auto set = [&snapshot](const QString& option, const auto& setter, const auto&... value) {
        if (setter)
            setter(value...);
        else
            snapshot.note(option + u": there is nothing to set it"_s);
    };
    filter(options, listing);
    if (options.shows(u"timeline"))
        listing.setLens(Listing::Lens::Timeline);
    if (const auto scale = options.timelineZoom())
        set(u"--snapshot-zoom"_s, stage.zoomTimeline, *scale);
    if (const auto question = options.question()) {
        listing.setLens(Listing::Lens::Ask);
        set(u"--snapshot-ask"_s, stage.ask, *question);
    }
    if (options.shows(u"by-meaning"))
        set(u"by-meaning"_s, stage.searchByMeaning);
    if (options.shows(u"text"))
        set(u"text"_s, stage.showText);
    if (options.shows(u"enlarged"))
        listing.setShowsEnlarged(true);
    if (const auto section = options.settings())
        set(u"--snapshot-settings"_s, stage.showSettings, *section);
}

} // namespace mossbank

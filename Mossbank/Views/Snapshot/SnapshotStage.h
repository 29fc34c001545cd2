// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>

namespace mossbank {

class AppModel;
class Snapshot;

/// What a run for a picture may set that no part of the model holds. What is empty is not there to
/// be set.
struct SnapshotStage {
    /// Shows the recognised text beside the screenshot.
    std::function<void()> showText = {};
    /// Zooms the timeline in.
    std::function<void(double scale)> zoomTimeline = {};
    /// Puts a question into its field.
    std::function<void(const QString& question)> ask = {};
    std::function<void()> searchByMeaning = {};
    /// Opens the settings at a section.
    std::function<void(const QString& section)> showSettings = {};
};

/// Brings the windows into the state that the command line asks for. What cannot be set is noted
/// beside the picture.
///
/// Threading: the main thread.
void prepareWorkspace(const Snapshot& snapshot, AppModel& model, const SnapshotStage& stage);

} // namespace mossbank

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

#include <QMetaType>
#include <QObject>
#include <QString>

#include <utility>

namespace mossbank {

/// What a check for a newer version of this program came to.
struct UpdateAnswer {
    enum class Kind {
        /// There is none.
        Newest,
        /// There is one, which can be installed.
        Newer,
        /// There is none, but another than this one was installed since this was started.
        Installed,
        /// It could not be told.
        Failed,
    };

    Kind kind = Kind::Failed;
    /// Of `Newer`: what the newer version is called, as its distributor has it.
    QString version = {};
    /// Of `Failed`: why, a sentence for the user.
    QString reason = {};
    /// Of `Newest`: whether the distributor was asked for it now. If not, it was the last time that
    /// this system asked, whenever that was.
    bool isOfNow = true;

    static UpdateAnswer newest(bool isOfNow) { return {.kind = Kind::Newest, .isOfNow = isOfNow}; }
    static UpdateAnswer newer(QString version)
    {
        return {.kind = Kind::Newer, .version = std::move(version)};
    }
    static UpdateAnswer installed() { return {.kind = Kind::Installed}; }
    static UpdateAnswer failed(QString reason)
    {
        return {.kind = Kind::Failed, .reason = std::move(reason)};
    }

    friend bool operator==(const UpdateAnswer&, const UpdateAnswer&) = default;
};

/// Where newer versions of this program come from. Nothing is checked, and nothing leaves the
/// machine, unless the user asks for it by `checkForUpdates`.
///
/// Threading: the main thread. Nothing waits.
/// Errors: none; a check that fails says why in its answer.
class Updates : public QObject {
    Q_OBJECT

public:
    /// Available as long as nothing says otherwise.
    virtual Availability availability() const = 0;

    /// Whether a check can be begun now: not while one is under way. The first question may have
    /// this machine asked where the program is from; it is false until that is known.
    virtual bool canCheckForUpdates() = 0;

    /// Has it checked, and `checked` tell what came of it, always later than this returns. One
    /// check at a time: while one is under way this does nothing. Where none can be begun the
    /// answer is `Failed`.
    virtual void checkForUpdates() = 0;

Q_SIGNALS:
    void canCheckForUpdatesChanged();
    void checked(const mossbank::UpdateAnswer& answer);
};

} // namespace mossbank

Q_DECLARE_METATYPE(mossbank::UpdateAnswer)

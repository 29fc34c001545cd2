// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Appearance.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace mossbank {

/// What the command line says of the sample library and of a picture of a window: the option
/// --demo and the family that begins with --snapshot.
///
/// An option with a value takes the argument behind it, whatever that is: a day may be "-1". One
/// that stands last counts as missing, and so does a value that cannot be understood.
///
/// Threading: any thread; it is a value.
class SnapshotOptions {
public:
    /// An option as the help tells of it.
    struct Option {
        QString name;
        bool takesValue;
        QString help;
    };

    /// `arguments`: those of the program, its name first.
    explicit SnapshotOptions(const QStringList& arguments = {});

    static QList<Option> all();
    /// The arguments that are none of this family.
    QStringList others() const;

    /// The argument behind the first `name`. Absent where there is none.
    std::optional<QString> value(QStringView name) const;

    /// The sample library, in place of the user's.
    bool isDemo() const;
    /// It stays empty.
    bool isFirstRun() const { return value(u"--snapshot-first-run").has_value(); }
    /// It holds so many screenshots, so many seconds apart. Not held to bounds; the interval is
    /// more than 0, and finite.
    std::optional<qsizetype> scale() const;
    double scaleInterval() const;
    /// What the choices of a sample run begin with.
    std::optional<QString> engine() const { return value(u"--snapshot-engine"); }
    std::optional<QString> meaning() const { return value(u"--snapshot-meaning"); }

    /// Where the picture goes. Absent: none is taken.
    std::optional<QString> path() const { return value(u"--snapshot"); }
    /// The section of the settings that it shows. Absent: it shows the workspace.
    std::optional<QString> settings() const { return value(u"--snapshot-settings"); }
    /// Absent: as it is.
    std::optional<Appearance::Mode> appearance() const;
    /// Seconds for what is on show to settle, from 0 to 30.
    double hold() const;
    std::optional<QString> query() const { return value(u"--snapshot-query"); }
    /// Days from today.
    std::optional<int> dayShift() const;
    std::optional<QString> app() const { return value(u"--snapshot-app"); }
    std::optional<double> timelineZoom() const;
    std::optional<QString> question() const { return value(u"--snapshot-ask"); }
    /// Whether a state is turned on by its name: all-history, timeline, by-meaning, text, enlarged.
    bool shows(QStringView state) const;

private:
    QStringList m_arguments;
};

} // namespace mossbank

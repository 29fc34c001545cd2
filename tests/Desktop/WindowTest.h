// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/Desktop/AccessibilityTest.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/SpokenProgram.h"

#include <QColor>
#include <QDate>
#include <QMap>

#include <functional>
#include <memory>

namespace mossbank::test {

/// A test of the window of the real program, on a desktop of its own: found and pressed by what it
/// tells assistive tools, typed into by keys. It ends as its user ends it, without a complaint.
///
/// What is to come is waited for. Where it does not come, the terminal has what was there instead.
class WindowTest : public AccessibilityTest {
    Q_OBJECT

protected:
    /// A screenshot that is in the library when the program starts.
    struct Shot {
        QString id;
        QString text;
        int daysAgo = 0;
        /// After the day's first minute.
        int second = 0;
        QColor colour = Qt::darkGreen;
    };

    /// The program, not started, with a home of its own. It does not record at its start.
    RunningMossbank& mossbank();
    void choose(QMap<QString, QString> choices);
    void add(const Shot& shot);
    /// The day that it is for the program.
    QDate today() const;
    /// Where that shot's picture is.
    QString pictureOf(const QString& id);
    /// Starts it by the user's hand, and waits for its window to have the keys, in the search
    /// field.
    bool open();
    SpokenProgram& spoken() { return *m_spoken; }

    /// Waits for this to be so.
    bool soon(const std::function<bool()>& isSo, const QString& what);
    bool shows(SpokenRole role, const QString& name);
    bool hides(SpokenRole role, const QString& name);
    /// Presses the only one of this name, once it shows.
    bool press(SpokenRole role, const QString& name);
    bool press(const QString& button) { return press(SpokenRole::Button, button); }

    /// How many rows the list has, and the place of the one that is selected among them, from 0
    /// on. -1 where none is.
    bool lists(qsizetype count);
    bool selects(qsizetype place);
    /// Whether the search field has the keys and these words in it.
    bool searchesFor(const QString& words);
    /// Whether the selected screenshot's picture is of this colour.
    bool showsPictureOf(const QColor& colour);

    void letGo() override;

private:
    std::unique_ptr<RunningMossbank> m_mossbank;
    std::unique_ptr<SpokenProgram> m_spoken;
    /// Hours that the program's clock is ahead of UTC.
    int m_ahead = 0;
};

} // namespace mossbank::test

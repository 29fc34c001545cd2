// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/SelectionCursor.h"

#include <QTest>

#include <limits>

namespace mossbank {

namespace {

using Row = std::optional<qsizetype>;

} // namespace

class SelectionCursorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aSelectionMovesAndStopsAtTheEnds_data()
    {
        QTest::addColumn<Row>("from");
        QTest::addColumn<qsizetype>("by");
        QTest::addColumn<qsizetype>("count");
        QTest::addColumn<Row>("to");
        const auto row = [](const char* name, Row from, qsizetype by, qsizetype count, Row to) {
            QTest::newRow(name) << from << by << count << to;
        };
        constexpr qsizetype kFarthest = std::numeric_limits<qsizetype>::max();
        row("none begins with the first", std::nullopt, 5, 3, 0);
        row("none and back", std::nullopt, -1, 3, 0);
        row("beyond the list", 7, -1, 3, 0);
        row("just beyond it", 3, -1, 3, 0);
        row("on", 0, 1, 3, 1);
        row("back", 2, -1, 3, 1);
        row("past the end", 2, 1, 3, 2);
        row("far past the end", 1, kFarthest, 3, 2);
        row("before the beginning", 0, -1, 3, 0);
        row("far before it", 1, std::numeric_limits<qsizetype>::min(), 3, 0);
        row("nowhere", 1, 0, 3, 1);
        row("from below, not as far as the list", -4, 1, 3, 0);
        row("from below, into the list", -4, 5, 3, 1);
        row("from below, past the end", -1, kFarthest, 3, 2);
        row("from below and back", std::numeric_limits<qsizetype>::min(), -1, 3, 0);
        row("an empty list", 0, 1, 0, std::nullopt);
        row("none in an empty list", std::nullopt, 1, 0, std::nullopt);
        row("less than empty", 0, 1, -1, std::nullopt);
    }
    void aSelectionMovesAndStopsAtTheEnds()
    {
        QFETCH(Row, from);
        QFETCH(qsizetype, by);
        QFETCH(qsizetype, count);
        QFETCH(Row, to);
        QVERIFY(SelectionCursor::move(from, by, count) == to);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::SelectionCursorTest)
#include "SelectionCursorTest.moc"

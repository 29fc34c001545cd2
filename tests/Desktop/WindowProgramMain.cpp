// SPDX-License-Identifier: Apache-2.0
//
// A program with windows for the tests to look at: opens and closes what its input says, a line of
// JSON each, and answers each with the window's number.
#include "tests/Desktop/PaintedWindows.h"

#include <QJsonDocument>

#include <iostream>
#include <string>

using namespace Qt::StringLiterals;
using namespace mossbank::test;

int main()
{
    PaintedWindows windows;
    for (std::string line; std::getline(std::cin, line);) {
        const QJsonObject order = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
        if (order.contains(u"close")) {
            const auto window = static_cast<xcb_window_t>(order[u"close"].toInteger());
            windows.close(window);
            std::cout << window << std::endl;
        } else {
            std::cout << windows.open(WindowSpec::fromJson(order)) << std::endl;
        }
    }
    return 0;
}

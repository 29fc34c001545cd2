// SPDX-License-Identifier: Apache-2.0
//
// A program with Qt for the tests to look at: a line for a name, which has the focus, and one for a
// password. F8 makes one for a password of the name's, and the other way round.
#include <QApplication>
#include <QFormLayout>
#include <QLineEdit>
#include <QShortcut>

using namespace Qt::StringLiterals;

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle(QApplication::arguments().value(1));
    QFormLayout form(&window);
    QLineEdit name;
    QLineEdit password;
    password.setEchoMode(QLineEdit::Password);
    form.addRow(u"Name"_s, &name);
    form.addRow(u"Password"_s, &password);
    const QShortcut change(QKeySequence(Qt::Key_F8), &window);
    QObject::connect(&change, &QShortcut::activated, &name, [&name] {
        const bool isSecret = name.echoMode() == QLineEdit::Password;
        name.setEchoMode(isSecret ? QLineEdit::Normal : QLineEdit::Password);
    });
    window.resize(400, 200);
    window.show();
    return QApplication::exec();
}

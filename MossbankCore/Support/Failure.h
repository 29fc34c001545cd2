// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QException>
#include <QString>

#include <exception>

namespace mossbank {

/// What goes wrong and is told to the user: one sentence, fit to be read.
///
/// It is a QException, so that it comes out of a QFuture as what it was when it went in.
class Failure : public QException {
public:
    explicit Failure(const QString& message);

    const QString& message() const { return m_message; }

    const char* what() const noexcept override { return m_utf8.constData(); }
    void raise() const override { throw *this; }
    Failure* clone() const override { return new Failure(*this); }

private:
    QString m_message;
    QByteArray m_utf8;
};

/// The file system's refusal, in its own words, with the path that it is about.
class FileError final : public Failure {
public:
    FileError(const QString& reason, const QString& path);
    /// With the words that the system has for `errorNumber`, an errno.
    FileError(int errorNumber, const QString& path);

    void raise() const override { throw *this; }
    FileError* clone() const override { return new FileError(*this); }
};

/// The sentence of any failure: a Failure's message, or what else an exception says of itself.
/// Empty for none.
QString describe(const std::exception_ptr& failure);

} // namespace mossbank

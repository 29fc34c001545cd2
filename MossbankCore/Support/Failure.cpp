// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Failure.h"

#include <system_error>

namespace mossbank {

Failure::Failure(const QString& message)
    : m_message(message)
    , m_utf8(message.toUtf8())
{
}

FileError::FileError(const QString& reason, const QString& path)
    : Failure(QStringLiteral("%1: %2").arg(reason, path))
{
}

FileError::FileError(int errorNumber, const QString& path)
    : FileError(QString::fromStdString(std::generic_category().message(errorNumber)), path)
{
}

QString describe(const std::exception_ptr& failure)
{
    if (!failure)
        return {};
    try {
        std::rethrow_exception(failure);
    } catch (const Failure& known) {
        return known.message();
    } catch (const std::exception& other) {
        return QString::fromUtf8(other.what());
    } catch (...) {
        return QStringLiteral("An unknown failure.");
    }
}

} // namespace mossbank

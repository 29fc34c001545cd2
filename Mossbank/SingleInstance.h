// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <optional>

namespace mossbank {

/// Sees to it that one Mossbank runs on a library, however the path to it is written. What holds
/// the library are locks of the kernel, on its folder and on a file in it: they go with their
/// process, also when that is killed or the power fails, whatever is left in the file. The folder's
/// lock needs no room and no right to write; the file's counts also where several computers share
/// the folder.
///
/// Errors: none are thrown. One of the two locks is enough; without any there is a `problem`.
class SingleInstance {
public:
    /// For the library in the folder `root`, which is made if need be.
    explicit SingleInstance(const QString& root);
    /// Lets the library go.
    ~SingleInstance();
    Q_DISABLE_COPY_MOVE(SingleInstance)

    /// Why nobody can hold the library, as a sentence for the user: on a full disk the folder of a
    /// first start cannot be made, for one. Two that went on without would not know of each other.
    /// Empty when it is held, by whomever.
    const QString& problem() const { return m_problem; }

    /// False when another process holds the library.
    bool isFirst() const { return !m_isTaken; }

    /// After `isFirst` was false: who came first, as a sentence for the user.
    QString whoIsFirst() const;
    /// And its process, where it is known and of this computer.
    std::optional<qint64> firstProcess() const;

private:
    /// What who holds the library has signed with.
    struct Signature {
        /// 0 when there is none.
        qint64 process = 0;
        QString host = {};

        bool isOfThisComputer() const;
    };
    Signature signature() const;

    void take(const QString& root);
    void takeFile();
    void sign() const;

    /// What became of an attempt at a lock.
    enum class Outcome { Held, Taken, Impossible };
    static Outcome lock(int file);
    /// Whether the file that is open is the one that has the name.
    bool isStillNamed() const;

    QString m_path;
    QString m_problem;
    bool m_isTaken = false;
    int m_folder = -1;
    int m_file = -1;
};

} // namespace mossbank

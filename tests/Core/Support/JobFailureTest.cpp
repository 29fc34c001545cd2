// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/StoreError.h"
#include "MossbankCore/Support/Job.h"

#include <QProcess>
#include <QTest>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr auto kEscapeVariable = "MOSSBANK_TEST_ESCAPING_FAILURE";

QCoro::Task<> throwFailure(Cancellation)
{
    throw StoreError(u"It was too much."_s);
    co_return;
}

QCoro::Task<> throwNumber(Cancellation)
{
    throw 5;
    co_return;
}

/// The program that a failure is to end.
int letEscape(QCoreApplication& program, const QString& escape)
{
    const Job job = escape == u"failure" ? Job::start(throwFailure) : Job::start(throwNumber);
    QMetaObject::invokeMethod(&program, &QCoreApplication::quit, Qt::QueuedConnection);
    return QCoreApplication::exec();
}

} // namespace

/// What happens when nobody in a job's work stops a failure.
class JobFailureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFailureThatEscapesEndsTheProgram_data();
    void aFailureThatEscapesEndsTheProgram();
};

void JobFailureTest::aFailureThatEscapesEndsTheProgram_data()
{
    QTest::addColumn<QString>("escape");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("a failure") << u"failure"_s << u"It was too much."_s;
    QTest::newRow("anything else") << u"number"_s << u"An unknown failure."_s;
}

void JobFailureTest::aFailureThatEscapesEndsTheProgram()
{
    QFETCH(QString, escape);
    QFETCH(QString, sentence);
    QProcess program;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kEscapeVariable), escape);
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationFilePath(), {});
    QVERIFY(program.waitForFinished(20'000));
    const QString said = QString::fromUtf8(program.readAllStandardError());
    QCOMPARE(program.exitStatus(), QProcess::CrashExit);
    QVERIFY2(said.contains(u"A background job let a failure escape: "_s + sentence),
             qPrintable(said));
}

} // namespace mossbank

int main(int argc, char** argv)
{
    QCoreApplication program(argc, argv);
    const QString escape = qEnvironmentVariable(mossbank::kEscapeVariable);
    if (!escape.isEmpty())
        return mossbank::letEscape(program, escape);
    mossbank::JobFailureTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "JobFailureTest.moc"

#include "conversion.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

#include <utility>

Conversion::~Conversion()
{
    if (!process_)
        return;
    constexpr int patience = 3000; // ms, in which it removes what it has begun
    process_->disconnect(this);
    process_->terminate();
    process_->waitForFinished(patience);
}

void Conversion::start(const QString &input, const QString &output)
{
    if (process_) {
        emit said(QStringLiteral("A conversion is under way."));
        return;
    }
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/aia-convert");
    if (!QFileInfo(program).isExecutable()) {
        emit said(QStringLiteral(
            "The program aia-convert isn't beside this one, so the run can't be converted."));
        return;
    }
    process_ = new QProcess(this);
    connect(process_, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this, output](int code, QProcess::ExitStatus status) {
                finish(output, code == 0 && status == QProcess::NormalExit);
            });
    connect(process_, &QProcess::errorOccurred, this, [this, output](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish(output, false);
    });
    emit said(QStringLiteral("Converting \u2026"));
    process_->start(program,
                    {QStringLiteral("--quiet"), QStringLiteral("--force"), QStringLiteral("-o"), output,
                     QStringLiteral("--"), input});
}

void Conversion::finish(const QString &output, bool isDone)
{
    const QString words = QString::fromLocal8Bit(process_->readAllStandardError()).simplified();
    process_->deleteLater();
    process_ = nullptr;
    emit said(isDone ? QStringLiteral("The run was converted to \"%1\". %2").arg(output, words).trimmed()
                     : QStringLiteral("The run wasn't converted, or not in full. %1").arg(words));
}

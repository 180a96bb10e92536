#include "rundoubt.h"

#include <QObject>
#include <QVariant>

std::vector<RunDoubt> doubtsOf(const QObject &copy)
{
    std::vector<RunDoubt> doubts;
    for (const QVariant &one : copy.property("doubts").toList()) {
        const QVariantMap map = one.toMap();
        RunDoubt doubt;
        doubt.code = map.value(QStringLiteral("code")).toString();
        doubt.count = map.value(QStringLiteral("count")).toLongLong();
        doubt.example = map.value(QStringLiteral("example")).toString();
        doubt.text = map.value(QStringLiteral("text")).toString();
        doubt.isLoss = map.value(QStringLiteral("loss")).toBool();
        doubts.push_back(doubt);
    }
    return doubts;
}

QString scanFailureOf(const QObject &copy)
{
    return copy.property("scanFailure").toString();
}

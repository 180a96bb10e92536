#include "masswindows.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr std::size_t mostWindows = 64; // each is a pass over the points and a curve

const QRegularExpression &separators()
{
    static const QRegularExpression pattern(QStringLiteral("[,;]"));
    return pattern;
}

// Half a unit of the last digit.
double halfStep(const QString &number)
{
    const int point = number.indexOf(QLatin1Char('.'));
    const int decimals = point == -1 ? 0 : number.size() - point - 1;
    return 0.5 * std::pow(10.0, -decimals);
}

} // namespace

std::optional<std::vector<ExtractedTrace>> massWindows(const QString &text, QString *fault)
{
    static const QRegularExpression pattern(QStringLiteral(
        "^\\s*(\\d{1,7}(?:\\.\\d{1,9})?)\\s*(?:[-\u2013]\\s*(\\d{1,7}(?:\\.\\d{1,9})?)\\s*)?$"));
    std::vector<ExtractedTrace> windows;
    for (const QString &part : text.split(separators())) {
        if (part.trimmed().isEmpty())
            continue;
        const QRegularExpressionMatch match = pattern.match(part);
        if (!match.hasMatch()) {
            *fault =
                QStringLiteral("\"%1\" is neither a mass nor a range such as 57-71.").arg(part.trimmed());
            return std::nullopt;
        }
        const QString from = match.captured(1);
        const QString to = match.captured(2);
        ExtractedTrace window;
        window.name = part.simplified();
        if (to.isEmpty())
            window.masses = {from.toDouble() - halfStep(from), from.toDouble() + halfStep(from)};
        else
            window.masses = {from.toDouble(), to.toDouble()};
        if (window.masses.from > window.masses.to) {
            *fault = QStringLiteral("The range \"%1\" ends before it begins.").arg(window.name);
            return std::nullopt;
        }
        windows.push_back(window);
    }
    if (windows.size() > mostWindows) {
        *fault = QStringLiteral("More than %1 traces can't be shown at once.").arg(mostWindows);
        return std::nullopt;
    }
    return windows;
}

QString textOf(const std::vector<ExtractedTrace> &windows)
{
    QStringList names;
    for (const ExtractedTrace &window : windows)
        names += window.name;
    return names.join(QStringLiteral(", "));
}

QString withMasses(const QString &text, const std::vector<double> &masses)
{
    constexpr double least = 0.5;
    constexpr double most = 1e6;
    QStringList names;
    for (const QString &name : text.split(separators())) {
        if (!name.trimmed().isEmpty())
            names += name.trimmed();
    }
    for (const double mass : masses) {
        const QString name = QString::number(std::lround(mass >= least && mass < most ? mass : 0.0));
        if (name != QLatin1String("0") && !names.contains(name))
            names += name;
    }
    return names.join(QStringLiteral(", "));
}

#include "mspwriter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace {

constexpr double leastMass = 1.0; // what search programs take

// What compounds' names have beyond ASCII and what Unicode doesn't take apart into it.
// clang-format off
constexpr struct {
    char16_t letter;
    const char *spelling;
} spellings[] = {
    {u'\u00ab', "\""},       {u'\u00b0', "deg"},      {u'\u00b1', "+/-"},      {u'\u00b5', "u"},
    {u'\u00b7', "."},        {u'\u00bb', "\""},       {u'\u00c6', "AE"},       {u'\u00d0', "D"},
    {u'\u00d7', "x"},        {u'\u00d8', "O"},        {u'\u00de', "Th"},       {u'\u00df', "ss"},
    {u'\u00e6', "ae"},       {u'\u00f0', "d"},        {u'\u00f8', "o"},        {u'\u00fe', "th"},
    {u'\u0110', "D"},        {u'\u0111', "d"},        {u'\u0131', "i"},        {u'\u0141', "L"},
    {u'\u0142', "l"},        {u'\u0152', "OE"},       {u'\u0153', "oe"},       {u'\u0391', "Alpha"},
    {u'\u0392', "Beta"},     {u'\u0393', "Gamma"},    {u'\u0394', "Delta"},    {u'\u0395', "Epsilon"},
    {u'\u0396', "Zeta"},     {u'\u0397', "Eta"},      {u'\u0398', "Theta"},    {u'\u0399', "Iota"},
    {u'\u039a', "Kappa"},    {u'\u039b', "Lambda"},   {u'\u039c', "Mu"},       {u'\u039d', "Nu"},
    {u'\u039e', "Xi"},       {u'\u039f', "Omicron"},  {u'\u03a0', "Pi"},       {u'\u03a1', "Rho"},
    {u'\u03a3', "Sigma"},    {u'\u03a4', "Tau"},      {u'\u03a5', "Upsilon"},  {u'\u03a6', "Phi"},
    {u'\u03a7', "Chi"},      {u'\u03a8', "Psi"},      {u'\u03a9', "Omega"},    {u'\u03b1', "alpha"},
    {u'\u03b2', "beta"},     {u'\u03b3', "gamma"},    {u'\u03b4', "delta"},    {u'\u03b5', "epsilon"},
    {u'\u03b6', "zeta"},     {u'\u03b7', "eta"},      {u'\u03b8', "theta"},    {u'\u03b9', "iota"},
    {u'\u03ba', "kappa"},    {u'\u03bb', "lambda"},   {u'\u03bc', "mu"},       {u'\u03bd', "nu"},
    {u'\u03be', "xi"},       {u'\u03bf', "omicron"},  {u'\u03c0', "pi"},       {u'\u03c1', "rho"},
    {u'\u03c2', "sigma"},    {u'\u03c3', "sigma"},    {u'\u03c4', "tau"},      {u'\u03c5', "upsilon"},
    {u'\u03c6', "phi"},      {u'\u03c7', "chi"},      {u'\u03c8', "psi"},      {u'\u03c9', "omega"},
    {u'\u2010', "-"},        {u'\u2011', "-"},        {u'\u2012', "-"},        {u'\u2013', "-"},
    {u'\u2014', "-"},        {u'\u2018', "'"},        {u'\u2019', "'"},        {u'\u201c', "\""},
    {u'\u201d', "\""},       {u'\u2032', "'"},        {u'\u2033', "''"},       {u'\u2044', "/"},
    {u'\u2192', "->"},       {u'\u2212', "-"},        {u'\u2264', "<="},       {u'\u2265', ">="},
};
// clang-format on
static_assert(std::size(spellings) == 88);

// Returns a text in ASCII without line breaks: letters with marks lose them, Greek letters are spelled
// out, what has no counterpart becomes a question mark.
QByteArray asciiLine(const QString &text)
{
    QByteArray line;
    for (const QChar letter : text.normalized(QString::NormalizationForm_D)) {
        const auto spelling =
            std::find_if(std::begin(spellings), std::end(spellings),
                         [letter](const auto &row) { return row.letter == letter.unicode(); });
        if (letter.isSpace() || letter.category() == QChar::Other_Control)
            line += ' ';
        else if (letter.unicode() < 0x80)
            line += char(letter.unicode());
        else if (spelling != std::end(spellings))
            line += spelling->spelling;
        else if (const QString plain = QString(letter).normalized(QString::NormalizationForm_KD);
                 plain != letter)
            line += asciiLine(plain); // of a small digit, say
        else if (!letter.isMark() && !letter.isLowSurrogate())
            line += '?';
    }
    return line.simplified();
}

void putText(TextOutput &output, const char *field, const QString &text)
{
    const QByteArray line = asciiLine(text);
    if (line.isEmpty())
        return;
    output.put(field);
    output.put(line.constData());
    output.put('\n');
}

void putNumber(TextOutput &output, const char *field, double number)
{
    if (!std::isfinite(number))
        return;
    output.put(field);
    output.plainReal(number);
    output.put('\n');
}

} // namespace

bool isMspPeak(double mass, double intensity)
{
    return std::isfinite(mass) && mass >= leastMass && std::isfinite(intensity) && intensity > 0.0;
}

QString casText(qint32 number)
{
    if (number <= 0)
        return QString();
    return QStringLiteral("%1-%2-%3") // the last digit checks the others
        .arg(number / 1000)
        .arg(number / 10 % 100, 2, 10, QLatin1Char('0'))
        .arg(number % 10);
}

bool isCasNumber(qint32 number)
{
    constexpr qint32 first = 50000; // 50-00-0
    qint32 sum = 0;
    qint32 weight = 1;
    for (qint32 digits = number / 10; digits > 0; digits /= 10)
        sum += weight++ * (digits % 10);
    return number >= first && sum % 10 == number % 10;
}

MspEntry entryOf(const MsCompound &compound, qint32 number)
{
    constexpr double secondsPerMinute = 60.0;
    MspEntry entry;
    const bool hasName = !asciiLine(compound.name).isEmpty(); // an entry begins with its name
    entry.name = hasName ? compound.name : QStringLiteral("Entry %1").arg(number);
    entry.synonyms = compound.otherNames;
    if (!compound.casName.isNull() && compound.casName != compound.name)
        entry.synonyms += compound.casName;
    entry.formula = compound.formula;
    entry.molecularWeight = compound.chemicalMass > 0.0 ? compound.chemicalMass
        : compound.nominalMass > 0                      ? double(compound.nominalMass)
                                                        : entry.molecularWeight;
    if (compound.accurateMass > 0.0) // nothing weighs nothing
        entry.exactMass = compound.accurateMass;
    entry.casNumber = casText(compound.casNumber);
    entry.retentionIndex = compound.retentionIndex;
    entry.minutes = compound.absoluteRetention / secondsPerMinute;
    entry.comment = compound.information;
    return entry;
}

bool writeMspEntry(TextOutput &output, const MspEntry &entry)
{
    qint64 count = 0;
    for (std::size_t i = 0; i < entry.masses.size(); ++i)
        count += isMspPeak(entry.masses[i], entry.intensities[i]);
    if (count == 0)
        return false;

    putText(output, "Name: ", entry.name);
    for (const QString &synonym : entry.synonyms)
        putText(output, "Synon: ", synonym);
    putText(output, "Formula: ", entry.formula);
    putNumber(output, "MW: ", std::round(entry.molecularWeight));
    putNumber(output, "ExactMass: ", entry.exactMass);
    putText(output, "CAS#: ", entry.casNumber);
    putNumber(output, "Retention_index: ", entry.retentionIndex);
    putNumber(output, "RT: ", entry.minutes);
    putText(output, "Comment: ", entry.comment);
    output.put("Num Peaks: ");
    output.integer(count);
    output.put('\n');
    for (std::size_t i = 0; i < entry.masses.size(); ++i) {
        if (!isMspPeak(entry.masses[i], entry.intensities[i]))
            continue;
        output.plainReal(entry.masses[i]);
        output.put(' ');
        output.plainReal(entry.intensities[i]);
        output.put('\n');
    }
    output.put('\n');
    return true;
}

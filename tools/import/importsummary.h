// What a person wants to know about an imported run, a line for each fact.
#ifndef IMPORTSUMMARY_H
#define IMPORTSUMMARY_H

#include <QString>

#include <cstdio>
#include <utility>
#include <vector>

class DVHeader;

class ImportSummary
{
public:
    // Takes the facts that are known before the first scan.
    void start(const QString &fileName, const DVHeader &header, const float *table, int tableSize);
    void addPoints(int count) { points += count; }
    // Writes the summary; `unreadScans` is a phrase.
    void write(std::FILE *stream, const QString &unreadScans) const;

private:
    void add(const char *label, const QString &value);
    void addModulation(const DVHeader &header);

    std::vector<std::pair<QString, QString>> lines;
    qint64 points = 0;
};

#endif // IMPORTSUMMARY_H

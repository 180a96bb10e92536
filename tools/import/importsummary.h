// What a person wants to know about an imported run.
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
    void start(const QString &fileName, const DVHeader &header, const float *table, int tableSize);
    void addPoints(int count) { points += count; }
    void write(std::FILE *stream, const QString &unreadScans) const;

private:
    void add(const char *label, const QString &value);
    void addModulation(const DVHeader &header);

    std::vector<std::pair<QString, QString>> lines;
    qint64 points = 0;
};

#endif // IMPORTSUMMARY_H

// What there is to say of a conversion, besides that it was done.
#ifndef CONVERSIONLOG_H
#define CONVERSIONLOG_H

#include <QString>
#include <QStringList>

class ConversionLog
{
public:
    // Something that is odd or was changed, though no number is lost. A sentence; each is kept once.
    void warn(const QString &sentence) { add(&warnings_, sentence); }
    // Something that a person may want to know and that isn't odd.
    void note(const QString &sentence) { add(&notes_, sentence); }
    // Something of the input that the output lacks.
    void lose(const QString &sentence) { add(&losses_, sentence); }
    // Why there is no output. The first failure stays. Returns false.
    bool fail(const QString &sentence)
    {
        if (failure_.isNull())
            failure_ = sentence;
        return false;
    }

    const QStringList &warnings() const { return warnings_; }
    const QStringList &notes() const { return notes_; }
    const QStringList &losses() const { return losses_; }
    QString failure() const { return failure_; }

private:
    static void add(QStringList *sentences, const QString &sentence)
    {
        if (!sentences->contains(sentence))
            *sentences += sentence;
    }

    QStringList warnings_;
    QStringList losses_;
    QStringList notes_;
    QString failure_;
};

#endif // CONVERSIONLOG_H

// The part of an import plugin that asks the user for parameters. The order of the virtual operations
// is fixed.
#ifndef DVIMPORTPARAMTYPE_H
#define DVIMPORTPARAMTYPE_H

#include <QString>
#include <QVector>

class QWidget;

class DVImportParamType
{
public:
    explicit DVImportParamType(const QString &typeText);
    virtual ~DVImportParamType();

    // Returns the choice before the user is asked: none.
    virtual QVector<int> getDefaultChoice(int parameter) const;

    // Closes the file that is open and opens `fileName` in its place. Returns false if that can't be
    // opened; no file is open then.
    virtual bool reopenForFile(const QString &fileName) = 0;

    virtual int pluginKind() = 0;

    // Asks for the parameters of the open file, in a modal dialog over `parent`. Returns 0 in every case.
    virtual int askParameters(QWidget *parent) = 0;

    // Returns whether the plugin has parameters to ask for.
    virtual bool paramTypeFlag() = 0;

protected:
    QString typeText;
};

#endif // DVIMPORTPARAMTYPE_H

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

    // The choice that stands before the user is asked; none.
    virtual QVector<int> getDefaultChoice(int parameter) const;

    // Closes the file that is open and opens `fileName` in its place; false if that can't be opened, and
    // then none is open.
    virtual bool reopenForFile(const QString &fileName) = 0;

    virtual int pluginKind() = 0;

    // Asks for the parameters of the open file, in a modal dialog over `parent`. The result is always 0.
    virtual int askParameters(QWidget *parent) = 0;

    // Whether the plugin has parameters to ask for.
    virtual bool paramTypeFlag() = 0;

protected:
    QString typeText;
};

#endif // DVIMPORTPARAMTYPE_H

// An import plugin of any kind. The order of the virtual operations is fixed.
#ifndef DVIMPORTINTERFACE_H
#define DVIMPORTINTERFACE_H

#include "plugininterface.h"
#include "tloggerif.h"

#include <QObject>

class TFileBuffer;

class DVImportInterface : public QObject, public TLoggerIf, public PluginInterface
{
    Q_OBJECT

public:
    DVImportInterface() = default;

    // Imports a file; see DVImportAnalysisInterface.
    virtual bool import(const QString &fileName, const QString &title, const QString &path,
                        TFileBuffer *buffer) = 0;

    // Returns whether `fileName` can be imported. Here it has to be a readable regular file with one of
    // the plugin's extensions; if it isn't, `text` receives a sentence that says why. A plugin adds tests
    // of its own, and answers for the file that it has open, if any.
    virtual bool canImport(TFileBuffer *buffer, const QString &fileName, QString &text);

    virtual int importQueryValue() = 0;
    virtual QString getFileName() const;
    virtual void setEnabled(bool on);
    virtual bool isEnabled() const;

public slots:
    // The user pressed Cancel on the progress bar: the active run of `import` stops before its next scan.
    // Nothing happens if no run is active.
    virtual void pBarCanceledSlot();

public:
    // Returns whether the name ends in one of the plugin's extensions, in upper or lower case.
    bool matchExtension(const QString &fileName) const;

    QList<QString> getExtension() const override;
    TApplicationData *getApplicationData() const override;
    void setApplicationData(TApplicationData *data) override;

protected:
    bool isCanceled() const { return canceled; }
    void resetCanceled() { canceled = false; }
    void copyImportState(const DVImportInterface &source);

    QList<QString> extensionList; // with the dot
    QString fileName;             // of the file that is open

private:
    TApplicationData *applicationData = nullptr;
    bool enabled = true;
    bool canceled = false;
};

#endif // DVIMPORTINTERFACE_H

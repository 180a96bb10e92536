// The import plugin, loaded as the host loads it.
#ifndef IMPORTPLUGIN_H
#define IMPORTPLUGIN_H

#include <QPluginLoader>
#include <QString>

class DVImportAnalysisInterface;

// That of the programs' own folder of plugins. It stays loaded until the process ends.
class ImportPlugin
{
public:
    ImportPlugin();

    // Returns the plugin's own object, which the plugin keeps. It is loaded at the first call. Null where
    // it can't be loaded: fault() says why.
    DVImportAnalysisInterface *prototype();

    // Returns a sentence; null where the last call of prototype() went well, or before the first one.
    QString fault() const { return fault_; }

private:
    QPluginLoader loader_;
    QString fault_;
};

#endif // IMPORTPLUGIN_H

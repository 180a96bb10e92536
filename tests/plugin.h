// The plugin, loaded and driven as the host does it.
#ifndef PLUGIN_H
#define PLUGIN_H

#include "dvimportanalysisinterface.h"
#include "dvimportparamtype.h"

#include <QPluginLoader>

#include <memory>

class Plugin
{
public:
    using Copy = std::unique_ptr<DVImportAnalysisInterface>;

    // The library's own object; a new one where the last one was deleted. Null if it can't be loaded.
    DVImportAnalysisInterface *prototype() { return dynamic_cast<DVImportAnalysisInterface *>(loader.instance()); }
    DVImportParamType *parameters()
    {
        return static_cast<DVImportParamType *>(loader.instance()->qt_metacast("DVImportParamType"));
    }

    bool canImport(const QString &path)
    {
        QString text;
        return prototype()->canImport(nullptr, path, text);
    }
    Copy clone() { return Copy(prototype()->clone()); }
    // Null if it can't be imported.
    Copy copyFor(const QString &path) { return canImport(path) ? clone() : nullptr; }

    static bool import(DVImportAnalysisInterface *copy, DVImportReceiver *receiver)
    {
        copy->setReceiver(receiver);
        return copy->import(QString(), QString(), QString(), nullptr);
    }

    QPluginLoader loader{QStringLiteral(AIA_PLUGIN)};
};

#endif // PLUGIN_H

#include "importplugin.h"

#include "dvimportanalysisinterface.h"
#include "messagetext.h"
#include "msinput.h"

ImportPlugin::ImportPlugin() : loader_(pluginFolder() + QStringLiteral("/Hsk.Dorvane.ImportAiaMs.so"))
{
}

DVImportAnalysisInterface *ImportPlugin::prototype()
{
    auto *prototype = dynamic_cast<DVImportAnalysisInterface *>(loader_.instance());
    if (prototype)
        fault_ = QString();
    else if (loader_.isLoaded())
        fault_ = QStringLiteral("The file \"%1\" isn't an import plugin.").arg(loader_.fileName());
    else
        fault_ =
            withFullStop(QStringLiteral("The plugin can't be loaded: %1").arg(loader_.errorString()));
    return prototype;
}

// The parameters that no file holds, so that the user is asked for them.
#include "importaiams.h"

#include "dvimportgcgcdialog.h"

#include <QFileInfo>
#include <QWidget>

int ImportAiaMs::askParameters(QWidget *parent)
{
    if (applyToAll)
        return 0;

    DVImportGCGCDialog dialog(parent, QFileInfo(fileName).fileName());
    dialog.exec();
    applyToAll = dialog.applyToAll();
    // "No" leaves the length that was set before.
    if (dialog.isGCxGC())
        modulation = float(dialog.modulationLength());
    return 0;
}

bool ImportAiaMs::paramTypeFlag()
{
    return true;
}

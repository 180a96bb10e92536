// A file that a program is asked to read, and what it needs to open it.
#ifndef MSINPUT_H
#define MSINPUT_H

#include "msfile.h"

#include <QString>

// Returns the sentence that says why there is no file to read under that name, or a null text if there is
// one. It isn't opened.
QString whyUnreadable(const QString &name);

// Returns the folder of the plugin, and of the program that looks at files of the newer kinds first.
// Wants an application object, as the folder is found from the program's.
QString pluginFolder();

// Opens a file that nobody vouches for, in the way of all programs: after a first look at one of a newer
// kind by the program `lookProgram`, see mslook.h; that in pluginFolder() where none is named. Returns no
// file if that fails; where more is known than that netCDF refuses it, an error message says so.
MsFile openInput(const QString &name, const QString &lookProgram = QString());

// Returns the sentence that says why openInput returned no file: `errors`, its messages, or what is left
// where there were none.
QString whyNotOpened(const QString &name, const QString &errors);

#endif // MSINPUT_H

// Private to the toolkit: how messages show a path.
#ifndef PATH_P_H
#define PATH_P_H

#include <QString>

// Returns a path as rich text: read in the file system's coding, or in Latin-1 where that can't be.
QString ms_shown_name(const char *path);

#endif // PATH_P_H

// Private to the toolkit: how messages show a path, and what the system says of it.
#ifndef PATH_P_H
#define PATH_P_H

#include <QString>

// Returns a path as rich text: read in the file system's coding, or in Latin-1 where that can't be.
QString ms_shown_name(const char *path);

// Returns the system's text of an error (errno).
QString ms_system_text(int error);

// Tells with an error message that a read of a file was refused.
void ms_report_refusal(const char *path, int error);

#endif // PATH_P_H

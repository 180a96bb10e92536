// The running account of an import.
#ifndef TTESTINGMACROS_H
#define TTESTINGMACROS_H

class QString;

// Writes one diagnostic line: to the host's logger if there is one, and to the debugger if one listens,
// else to standard error. `level` is 0 debug, 1 warning, 2 plain, 3 fatal (which ends nothing);
// `context` isn't read.
void testingMessageOutput(int level, const void *context, const QString &message);

#endif // TTESTINGMACROS_H

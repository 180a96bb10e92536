// The running account of an import.
#ifndef TTESTINGMACROS_H
#define TTESTINGMACROS_H

class QString;

// Writes one diagnostic line to the host's logger, if there is one, and to the debugger that listens or,
// without one, to standard error. `level` is 0 for debug, 1 warning, 2 plain, 3 fatal (the process goes
// on all the same). `context` isn't read.
void testingMessageOutput(int level, const void *context, const QString &message);

#endif // TTESTINGMACROS_H

// Base of the host's classes that can be given a logger. Nothing here makes use of it.
#ifndef TLOGGERIF_H
#define TLOGGERIF_H

class TLoggerIf
{
};

#endif // TLOGGERIF_H

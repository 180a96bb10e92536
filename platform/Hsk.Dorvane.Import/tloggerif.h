// Base of the host's classes that can be given a logger. Nothing here uses it.
#ifndef TLOGGERIF_H
#define TLOGGERIF_H

class TLoggerIf
{
};

#endif // TLOGGERIF_H

// Where the program is that takes the first look at files of the newer kinds.
#ifndef LOOKPROGRAM_H
#define LOOKPROGRAM_H

#include <QString>

// Its path: it lies beside the plugin's own library file.
QString lookProgram();

#endif // LOOKPROGRAM_H

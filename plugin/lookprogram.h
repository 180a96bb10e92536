// Where the program lies that looks at files of the newer kinds first.
#ifndef LOOKPROGRAM_H
#define LOOKPROGRAM_H

#include <QString>

// Its path: it lies beside the plugin's own library file.
QString lookProgram();

#endif // LOOKPROGRAM_H

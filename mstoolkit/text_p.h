// Private to the toolkit: one text of a text variable.
#ifndef TEXT_P_H
#define TEXT_P_H

#include "filedata_p.h"

// As the arguments of ms_read_string_variable and ms_write_string_variable.
struct MsTextPlace {
    int varid;
    qint32 row;
    qint32 column;
    qint32 width;
};

// Read and write a text like those routines. `shape` is the variable's.
char *ms_read_text(MsFileData &data, const MsShape &shape, const MsTextPlace &place);
int ms_write_text(const MsFileData &data, const MsTextPlace &place, const char *text);

#endif // TEXT_P_H

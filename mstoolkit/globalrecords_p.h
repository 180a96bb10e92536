// Private to the toolkit: clearing the field of one attribute.
#ifndef GLOBALRECORDS_P_H
#define GLOBALRECORDS_P_H

#include "mstoolkit.h"

// Sets the missing value, the default code or a null text, which is freed first where `release` isn't 0.
void ms_clear_attribute(char release, const MsAttributeRow &row, void *record);

#endif // GLOBALRECORDS_P_H

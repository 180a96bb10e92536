// The whole road of one file: recognition, the working copy, the run, and everything else that the
// toolkit can read of it.
#ifndef ROAD_H
#define ROAD_H

#include <QString>

// Follows the road. Nothing that the file holds may make it crash, leak or hang.
void followRoad(const QString &path);

#endif // ROAD_H

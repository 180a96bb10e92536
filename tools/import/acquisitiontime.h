// The time at which a run was acquired, as its file has it.
#ifndef ACQUISITIONTIME_H
#define ACQUISITIONTIME_H

#include <QString>

// Returns the stamp as it stands, and behind it the same in UTC if its time zone is known. Understood are
// year, month, day, hour, minute and second in this order, together or apart, as in 20070923040800+0200,
// 2007-09-23T04:08:00Z and 2007,09,23,04:08:00. Of a stamp without a zone, or one that isn't understood,
// it says so. Null for a null text.
QString acquisitionTime(const QString &stamp);

#endif // ACQUISITIONTIME_H

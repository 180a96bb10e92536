#include "dvimportreceiver.h"

DVImportReceiver::~DVImportReceiver() = default;

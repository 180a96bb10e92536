#include "tlogger.h"

namespace {

TLogger *defaultInstance = nullptr;

} // namespace

TLogger *TLogger::getDefaultInstance()
{
    return defaultInstance;
}

void TLogger::setDefaultInstance(TLogger *logger)
{
    defaultInstance = logger;
}

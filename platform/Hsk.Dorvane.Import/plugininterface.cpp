#include "plugininterface.h"

PluginInterface::~PluginInterface() = default;

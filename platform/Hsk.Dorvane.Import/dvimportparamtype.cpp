#include "dvimportparamtype.h"

DVImportParamType::DVImportParamType(const QString &text) : typeText(text)
{
}

DVImportParamType::~DVImportParamType() = default;

QVector<int> DVImportParamType::getDefaultChoice(int) const
{
    return {};
}

#include "basic/data/NbdEMacroIndexType.h"

#include <QObject>

const NbdEMacroIndexType NbdEMacroIndexType::INTEGER(QObject::tr("Integer"), E_INTEGER, "INTEGER");
const NbdEMacroIndexType NbdEMacroIndexType::STRING(QObject::tr("Text"), E_STRING, "STRING");

NbdEMacroIndexType::NbdEMacroIndexType() : NbdEMacroIndexType(INTEGER) {}

NbdEMacroIndexType::NbdEMacroIndexType(const QString &label, EValue value, const char *key)
    : NbbAEnum(label, value, key)
{
}

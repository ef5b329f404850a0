#include "basic/base/NbbAEnum.h"

NbbAEnum::NbbAEnum(const QString &label, int value, const char *key)
    : _label(label), _value(value), _key(key)
{
}

NbbAEnum::~NbbAEnum() = default;

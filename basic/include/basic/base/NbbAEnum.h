#pragma once

#include <QString>

/// Base of the keyed enumerations: a value with a stable text key (files, scripts) and a translated
/// label (users). Instances of one class compare by value.
class NbbAEnum
{
public:
  NbbAEnum(const QString &label, int value, const char *key);
  NbbAEnum(const NbbAEnum &) = default;
  NbbAEnum &operator=(const NbbAEnum &) = default;
  virtual ~NbbAEnum();

  const QString &getLabel() const { return _label; }
  int getValue() const { return _value; }
  const char *getKey() const { return _key; }
  QString getKeyString() const { return QString::fromLatin1(_key); }

private:
  QString _label;
  int _value;
  const char *_key;
};

#pragma once

#include "basic/base/NbbAEnum.h"
#include "basic/base/NbbAFlags.h"

/// What the samples of a data file are. Values are one bit each.
class NbdESupport : public NbbAEnum
{
public:
  static const NbdESupport POINTS;
  static const NbdESupport GRID;
  static const NbdESupport LINE_HEADS;     ///< one sample per line, at its start
  static const NbdESupport LINE_POINTS;    ///< points along lines
  static const NbdESupport LINE_INTERVAL;  ///< intervals along lines (cores)

  bool operator==(const NbdESupport &other) const { return getValue() == other.getValue(); }
  bool operator!=(const NbdESupport &other) const { return getValue() != other.getValue(); }

private:
  NbdESupport(const QString &label, int value, const char *key);
};

/// A set of supports.
using NbdSupportFlags = NbbAFlags<NbdESupport>;

#pragma once

#include <QtGlobal>

/// A colour: 8 bits each of alpha, red, green and blue. Without any of them it is undefined.
struct NbdColor
{
  quint32 argb = 0;

  bool operator==(NbdColor other) const { return argb == other.argb; }
  bool operator!=(NbdColor other) const { return argb != other.argb; }
  bool operator<(NbdColor other) const { return argb < other.argb; }
};

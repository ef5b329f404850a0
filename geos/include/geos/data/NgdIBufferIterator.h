#pragma once

class NbdAData;

/// Hands out the buffers of a data set one by one: for each loop index, every cut in order.
class NgdIBufferIterator
{
public:
  virtual ~NgdIBufferIterator() = default;

  virtual void toFront() = 0;
  virtual bool hasNext() const = 0;

  /// Loads the next buffer; the caller owns it.
  virtual NbdAData *next() = 0;

  /// Advances without loading.
  virtual void skipNext() = 0;
};

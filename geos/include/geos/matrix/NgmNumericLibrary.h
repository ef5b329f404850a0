#pragma once

/// Settings of the numeric library under the matrix room, for the whole process or one thread.
class NgmNumericLibrary
{
public:
  /// Threads that the numeric library may use in the whole process.
  static void setThreads(int nThreads);

  /// Results on one machine no longer depend on the scheduling of threads, as long as arrays are
  /// 64-byte aligned. Has to come before the first numeric call; false when it came too late.
  static bool setReproducible();

  /// Releases the memory that the numeric library holds for the calling thread.
  static void freeThreadBuffers();

  /// For the calling thread only, and for the life of the object: the number of threads that the
  /// numeric library may use.
  class ThreadCount
  {
  public:
    explicit ThreadCount(int nThreads);
    ~ThreadCount();
    ThreadCount(const ThreadCount &) = delete;
    ThreadCount &operator=(const ThreadCount &) = delete;

  private:
    int _previous;
  };
};

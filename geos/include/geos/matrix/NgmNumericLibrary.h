#pragma once

/// Settings of the numeric library under the matrix room, for the whole process or one thread.
class NgmNumericLibrary
{
public:
  /// Threads that the numeric library may use in the whole process.
  static void setThreads(int nThreads);

  /// Results no longer depend on the alignment of arrays or the scheduling of threads, on one kind
  /// of machine. Has to come before the first numeric call; false when it came too late.
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

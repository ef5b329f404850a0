#pragma once

#include <QMutex>
#include <QString>
#include <QThreadPool>

#include <atomic>

/// The pool on which a calculator's workers run. It remembers whether a worker failed and the text
/// of the first failure; threads never expire.
class NgwThreadPool : public QThreadPool
{
public:
  NgwThreadPool();
  ~NgwThreadPool() override;

  /// No worker has failed since the last reset().
  bool isOk() const { return _ok.load(); }

  /// Text of the first failure; empty without one.
  QString getMessage() const;

  /// Forgets the failure of a previous run. No worker may be running.
  void reset();

  /// Notes a worker's failure, unless there is one already. An empty text is an interruption by the
  /// user.
  void reportFailure(const QString &workerMessage);

private:
  std::atomic<bool> _ok;
  mutable QMutex _mutex;  // guards _message
  QString _message;
};

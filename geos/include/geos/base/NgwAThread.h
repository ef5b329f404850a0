#pragma once

#include <QRunnable>
#include <QString>
#include <QtGlobal>

class NbcAProgress;
class NbeError;
class NgwThreadPool;

/// Base of the workers of a calculator. Each runs once on the calculator's pool, which deletes it.
///
/// Nothing thrown by `_run()` leaves the worker: failures become the text of the pool, and the
/// calculator's thread throws one error after all workers have stopped.
class NgwAThread : public QRunnable
{
public:
  explicit NgwAThread(NgwThreadPool *pool);

  void run() override;

  /// Also releases what the numeric library holds for the calling thread.
  ~NgwAThread() override;

  /// Progress is counted by sample instead of by buffer.
  bool _hasPerSampleProgress() const { return _perSampleProgress; }

protected:
  /// The work: usually a loop that takes buffers from the calculator until there is none left. It
  /// throws NbeException when the calculator was asked to stop.
  virtual void _run() = 0;

  void _setPerSampleProgress(bool perSample) { _perSampleProgress = perSample; }

  /// The object that counts the samples.
  void _setProgress(NbcAProgress *progress) { _progress = progress; }

  /// Advances the progress object by `n`, when progress is counted by sample.
  void _incrementCounter(qint64 n);

  void _sendErrorToPool(const NbeError &error);
  void _sendStatusToPool(bool ok);

private:
  NgwThreadPool *_pool;
  QString _message;
  bool _perSampleProgress = false;
  NbcAProgress *_progress = nullptr;
};

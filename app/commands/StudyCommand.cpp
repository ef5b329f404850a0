#include "app/commands/StudyCommand.h"

#include "app/commands/DraftCompletion.h"
#include "app/commands/JobDraft.h"
#include "app/commands/StudyRun.h"
#include "app/console/Console.h"
#include "app/report/ResultJson.h"

#include <QJsonDocument>

namespace orvenal {

void StudyCommand::_prepare(JobDraft &draft) const
{
  draft.keepOutputs(_getOutputs() << QStringLiteral("directory") << QStringLiteral("overwrite"));
}

void StudyCommand::_execute(JobDraft &draft, const RunSettings &settings, Console &console) const
{
  _complete(draft);
  completeNeighborhood(draft);
  completeCrossValidation(draft);
  const QString coordinates = chooseCoordinates(draft);
  completeMask(draft);
  if (draft.isOfData())
    checkColumns(draft);
  const QString grid = layGridOver(draft);
  Job job = draft.read();
  for (const QString &note : {coordinates, grid}) {
    if (!note.isEmpty())
      console.print(note);
  }
  if (settings.threads > 0)
    job.threads = settings.threads;
  if (settings.memory > 0)
    job.memory = settings.memory;
  if (settings.overwrite)
    job.output.overwrite = true;
  Steps steps = _getSteps(job);
  if (!job.output.report.isEmpty() || !job.output.results.isEmpty())
    steps.insert(Step::REPORT);
  StudyRun run(job, steps, console);
  run.run();
  if (settings.json)
    console.answer(
        QString::fromUtf8(QJsonDocument(resultToJson(run.getResult())).toJson()).trimmed());
}

}  // namespace orvenal

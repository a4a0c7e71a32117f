#include "viewer/window/Converting.h"

#include "exchange/Openjob.h"
#include "model/Message.h"
#include "shapes/Neighbours.h"

QString ConvertFiles(const TCommandLine& line, bool& good) {
  TModel model;
  TMeasuredData data;
  TOpenedJob job = OpenJob(line.Files, model, data);
  good = job.HasModel || job.HasData || !job.Functions.empty();
  if (!good) ShowMessage(job.Findings.Line());
  if (good && line.FollowNeighbours.value_or(false)) TNeighbours(model).Follow(data);
  if (good && !line.ConvertFile.isEmpty()) {
    TUniversalOptions options = line.Format;
    options.Written = QDateTime::currentDateTime();
    job.Findings.BeginFile(line.ConvertFile);
    const QString fault = SaveJob(model, data, line.ConvertFile, options, job.Findings);
    good = fault.isEmpty();
    if (!good) ShowMessage(fault);
  }
  return job.Findings.Text();
}

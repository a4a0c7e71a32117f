#include "viewer/window/Converting.h"

#include "exchange/Openjob.h"
#include "model/Message.h"
#include "viewer/window/Viewstate.h"

QString ConvertFiles(const TCommandLine& line, bool& good) {
  TModel model;
  TMeasuredData data;
  TOpenedJob job = OpenJob(line.Files, model, data, TWanted::Everything, {},
                           line.Matrices.value_or(TMatrixReading::RowsAreAxes));
  if (!job.HasModel && !job.HasData && job.Functions.empty()) job.Faults << job.Findings.Line();
  MoveUnmeasured(line.FollowNeighbours.value_or(false), model, data);
  if (!line.ConvertFile.isEmpty() && !job.Findings.Failed()) {
    TUniversalOptions options = line.Format;
    options.Written = QDateTime::currentDateTime();
    job.Findings.BeginFile(line.ConvertFile);
    const QString fault = SaveJob(model, data, line.ConvertFile, options, job.Findings);
    if (!fault.isEmpty()) job.Faults << fault;
  }
  for (const QString& fault : std::as_const(job.Faults)) ShowMessage(fault);
  good = job.Faults.isEmpty();
  if (good && !line.Report && job.Findings.ToKnow() > 0) {
    ShowMessage(job.Findings.Line() + QStringLiteral(" (--report tells which)"));
  }
  return job.Findings.Text();
}

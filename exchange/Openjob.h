#pragma once

#include <QString>
#include <QStringList>
#include <string_view>
#include <vector>

#include "exchange/Findings.h"
#include "exchange/Job.h"
#include "model/Animmodel.h"

/// What a file is by its content, whatever its name.
enum class TFileContent { Nothing, Model, Data, Universal, Table, Form };

/// Looks at the first part of a file. A file that cannot be read holds nothing.
TFileContent ContentOf(const QString& fileName);

/// Whether a file comes from elsewhere: it is a universal file or a table.
constexpr bool IsForeignContent(TFileContent content) {
  return content == TFileContent::Universal || content == TFileContent::Table;
}
inline bool IsForeign(const QString& fileName) { return IsForeignContent(ContentOf(fileName)); }

/// What became of the files of a job.
struct TOpenedJob {
  bool HasModel = false;   ///< the model was replaced
  bool HasData = false;    ///< so were the data
  QStringList ModelFiles;  ///< the files that gave geometry
  QStringList DataFiles;   ///< those that gave shapes; one may stand in both
  TFindings Findings;
  QStringList Faults;  ///< what was dropped from files of our own, a sentence each
  std::vector<TMeasuredFunction> Functions;
};

/// What of the job is wanted: the command "Load Data..." leaves the model as it is.
enum class TWanted { Everything, DataOnly };

/// Reads the files of one job, in any order, and replaces model and data by what they hold: our own
/// data sets first. Files without geometry are shapes for the present model; a model without shapes
/// leaves no data. Of several models, one of ours counts before others' geometry. A file that
/// cannot be read, a job that holds nothing to show, or a cancel leaves everything as it was. The
/// model is not Loaded meanwhile. GUI thread.
TOpenedJob OpenJob(const QStringList& fileNames, TModel& model, TMeasuredData& data,
                   TWanted wanted = TWanted::Everything, const TLoadProgress& progress = {},
                   TMatrixReading matrices = TMatrixReading::RowsAreAxes);

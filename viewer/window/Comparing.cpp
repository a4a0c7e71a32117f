#include "viewer/window/Comparing.h"

#include "exchange/Openjob.h"
#include "model/Ending.h"
#include "model/Message.h"
#include "model/Oneline.h"
#include "shapes/Shapetables.h"

namespace {

/// One or two groups of data sets for one model.
struct TCompared {
  TModel Model;
  TMeasuredData First;
  TMeasuredData Second;
  bool HasSecond = false;

  /// Says what was lost on the way. False if there is nothing to compare.
  bool Open(const QStringList& files, TMatrixReading matrices) {
    const QStringList last = files.last(1);
    const auto open = [&](const QStringList& names, TMeasuredData& data, TWanted wanted) {
      return OpenJob(names, Model, data, wanted, {}, matrices);
    };
    const TOpenedJob first = open(files.first(files.size() - 1), First, TWanted::Everything);
    HasSecond = first.HasModel && first.HasData;
    const TOpenedJob rest =
        HasSecond ? open(last, Second, TWanted::DataOnly) : open(files, First, TWanted::Everything);
    if (HasSecond && first.Findings.ToKnow() > 0) ShowMessage(first.Findings.Line());
    if (rest.Findings.Failed() || rest.Findings.ToKnow() > 0) ShowMessage(rest.Findings.Line());
    if (!rest.HasData && !rest.Findings.Failed()) {
      ShowMessage(QStringLiteral("There are no data sets in %1.").arg(ShownFileName(files.last())));
    }
    return rest.HasData;
  }
};

QString TableOf(const TCompared& compared, bool& good) {
  TMac mac(compared.First.All, compared.HasSecond ? compared.Second.All : compared.First.All);
  const QString fault = mac.Compute([](double) { return !TEnding::IsAsked(); });
  good = fault.isEmpty();
  if (good) return MacTable(mac);
  ShowMessage(QStringLiteral("The data sets cannot be compared: %1.").arg(fault));
  return {};
}

}  // namespace

QString CompareFiles(const TCommandLine& line, bool& good) {
  TCompared compared;
  good = compared.Open(line.Files, line.Matrices.value_or(TMatrixReading::RowsAreAxes));
  if (!good) return {};
  QStringList tables;
  if (line.Mac) tables << TableOf(compared, good);
  if (line.Complexity) {
    tables << ComplexityTable(compared.First.All);
    if (compared.HasSecond) tables << ComplexityTable(compared.Second.All);
  }
  return tables.join('\n');
}

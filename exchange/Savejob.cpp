#include "exchange/Savejob.h"

#include <QFileInfo>
#include <new>

#include "exchange/Modelwriter.h"
#include "model/Oneline.h"
#include "model/Wholefile.h"

namespace {

QString Write(const QString& fileName, const std::string& text) {
  const auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
  const QString why = WriteWholeFile(fileName, bytes);
  return why.isEmpty() ? why
                       : QStringLiteral("Cannot write %1: %2.").arg(ShownFileName(fileName), why);
}

}  // namespace

QString DataFileBeside(const QString& modelFile) {
  const QFileInfo file(modelFile);
  return file.path() + '/' + file.completeBaseName() + QStringLiteral(".dat");
}

bool IsUniversalName(const QString& fileName) {
  const QString suffix = QFileInfo(fileName).suffix().toLower();
  return suffix == QLatin1String("unv") || suffix == QLatin1String("uff");
}

QString WithJobSuffix(const QString& fileName) {
  const bool isModel = QFileInfo(fileName).suffix().toLower() == QLatin1String("mod");
  return isModel || IsUniversalName(fileName) ? fileName : fileName + QStringLiteral(".mod");
}

QStringList FilesToWrite(const QString& fileName, const TMeasuredData& data) {
  if (IsUniversalName(fileName) || data.All.Empty()) return {fileName};
  return {fileName, DataFileBeside(fileName)};
}

QString SaveJob(const TModel& model, const TMeasuredData& data, const QString& fileName,
                const TUniversalOptions& options, TFindings& findings) {
  if (model.Nodes.Empty()) {
    return QStringLiteral("Cannot write %1: there is no model.").arg(ShownFileName(fileName));
  }
  try {
    QString fault;
    if (IsUniversalName(fileName)) {
      fault = Write(fileName, WriteUniversal(model, data, options, findings));
    } else {
      // The data first: a model that is there shows that all of it is.
      if (!data.All.Empty()) {
        fault = Write(DataFileBeside(fileName), WriteDataText(data, findings));
      }
      if (fault.isEmpty()) fault = Write(fileName, WriteModelText(model));
    }
    if (fault.isEmpty()) {
      findings.Use({}, 0, QStringLiteral("written; data sets: %1").arg(data.All.Count()));
    }
    return fault;
  } catch (const std::bad_alloc&) {
    return QStringLiteral("Cannot write %1: not enough memory.").arg(ShownFileName(fileName));
  }
}

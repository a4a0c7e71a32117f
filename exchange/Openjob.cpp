#include "exchange/Openjob.h"

#include <QFileInfo>
#include <algorithm>
#include <new>
#include <optional>
#include <set>
#include <utility>

#include "exchange/Assembly.h"
#include "exchange/Systems.h"
#include "exchange/Texttable.h"
#include "exchange/Universal.h"
#include "model/Datafile.h"
#include "model/Filekind.h"
#include "model/Modelreader.h"
#include "model/Readfile.h"

namespace {

/// Whether a text is XML whose element is <ui>.
bool IsForm(std::string_view start) {
  constexpr std::size_t kFirstPart = 1 << 16;
  start = start.substr(0, kFirstPart);
  const std::size_t first = start.find_first_not_of("\xef\xbb\xbf \t\r\n");
  if (first == start.npos || start[first] != '<') return false;
  const std::size_t at = start.find("<ui");
  return at != start.npos && at + 3 < start.size() &&
         std::string_view(" \t\r\n>/").find(start[at + 3]) != std::string_view::npos;
}

TFileContent ContentOfText(std::string_view start) {
  if (IsModelText(start)) return TFileContent::Model;
  if (IsUniversal(start)) return TFileContent::Universal;
  if (IsForm(start)) return TFileContent::Form;
  if (IsTextTable(start)) return TFileContent::Table;
  return IsDataText(start) ? TFileContent::Data : TFileContent::Nothing;
}

/// The progress of a part of the work, as that of the whole.
class TPartOfProgress {
 public:
  TPartOfProgress(const TLoadProgress& progress, const QStringList& fileNames)
      : progress_(progress) {
    for (const QString& name : fileNames) all_ += SizeOf(name);
  }

  /// Of the next file. Not to be used once this is gone.
  TLoadProgress Next(const QString& fileName) {
    const double from = std::exchange(done_, done_ + SizeOf(fileName));
    if (!progress_) return {};
    return [this, from, to = done_](double part) {
      return progress_((from + (to - from) * part) / all_);
    };
  }

 private:
  static double SizeOf(const QString& name) {
    return static_cast<double>(QFileInfo(name).size()) + 1.0;
  }

  const TLoadProgress& progress_;
  double all_ = 0.0;
  double done_ = 0.0;
};

/// What the files of a job become while the present model and data stay.
class TJobReading {
 public:
  TJobReading(const TModel& model, const TMeasuredData& data, TWanted wanted, TOpenedJob& opened)
      : model_(model), data_(data), wanted_(wanted), opened_(opened) {}

  TJob Job;
  std::optional<TModelContent> Model;
  std::vector<TDataSet> Sets;

  /// Reads and assembles all. False, and noted, if it leaves nothing to take over.
  bool Read(const QStringList& fileNames, const TLoadProgress& progress) {
    TPartOfProgress parts(progress, fileNames);
    std::vector<QString> ownData;
    std::set<QString> named;
    for (const QString& name : fileNames) {
      if (const QString path = QFileInfo(name).canonicalFilePath();
          !path.isEmpty() && !named.insert(path).second) {
        LeaveOutRepeated(name);
        continue;
      }
      // A data file is aligned to the model, which another file may still bring.
      const TFileContent content = ContentOf(name);
      if (content == TFileContent::Data) {
        ownData.push_back(name);
      } else if (!ReadOne(name, content, parts.Next(name))) {
        return false;
      }
    }
    MakeModel();
    for (const QString& name : ownData) {
      if (!ReadOwnData(name, parts.Next(name))) return false;
    }
    MakeSets();
    return HasAnything(fileNames.size());
  }

 private:
  bool ReadOne(const QString& name, TFileContent content, const TLoadProgress& progress) {
    Begin(name);
    if (const QString why = WhyNotReadable(name); !why.isEmpty()) {
      Findings().Fail(why);
      return false;
    }
    switch (content) {
      case TFileContent::Model:
        return ReadOwnModel(name, progress);
      case TFileContent::Universal:
        return ReadForeign(name, ReadUniversal, progress);
      case TFileContent::Table:
        return ReadForeign(name, ReadTextTable, progress);
      case TFileContent::Form:
        Findings().LeaveOut({}, 0, QStringLiteral("it is a panel"));
        break;
      default:
        Findings().LeaveOut({}, 0, QStringLiteral("it holds neither a structure nor measurements"));
    }
    Job.BeginFile();
    return true;
  }

  void LeaveOutRepeated(const QString& name) {
    Begin(name);
    Job.BeginFile();
    Findings().LeaveOut({}, 0, QStringLiteral("it was named before"));
  }

  TFindings& Findings() { return opened_.Findings; }

  void Begin(const QString& name) {
    Findings().BeginFile(name);
    names_ << name;
  }

  /// Reads a file and hands its text on. False, and noted, if it was cancelled or could not be
  /// read.
  template <class TParse>
  bool ReadText(const QString& name, const TLoadProgress& progress, TParse parse) {
    TLoadReport report;
    ReadAndParse(name, report, progress, parse);
    if (report.Failed()) Findings().Fail(report.First());
    if (report.Cancelled()) Findings().Cancel();
    return !Findings().Failed() && !Findings().Cancelled();
  }

  template <class TReader>
  bool ReadForeign(const QString& name, TReader reader, const TLoadProgress& progress) {
    return ReadText(name, progress, [&](std::string_view text, const TLoadProgress& rest) {
      reader(text, Job, Findings(), rest);
    });
  }

  bool ReadOwnModel(const QString& name, const TLoadProgress& progress) {
    Job.BeginFile();
    if (Model || wanted_ == TWanted::DataOnly) {
      Findings().LeaveOut({}, 0,
                          Model ? QStringLiteral("a model was there before")
                                : QStringLiteral("it is a model file, not a data file"));
      return true;
    }
    return ReadOwn(name, TFileKind::Model, progress,
                   [&](std::string_view text, TLoadReport& report, const TLoadProgress& rest) {
                     const TModelHeaders headers{model_.NodesSection.toStdString(),
                                                 model_.ElementsSection.toStdString()};
                     TModelContent content;
                     if (!ReadModel(text, headers, &model_.Nodes, content, report, rest)) return;
                     Model = std::move(content);
                     opened_.ModelFiles << name;
                     Findings().Use({}, 0, QStringLiteral("the model"));
                   });
  }

  bool ReadOwnData(const QString& name, const TLoadProgress& progress) {
    Begin(name);
    Job.BeginFile();
    const TDataLimits limits{kMostDataSets, data_.MostNodes};
    return ReadOwn(name, TFileKind::Data, progress,
                   [&](std::string_view text, TLoadReport& report, const TLoadProgress& rest) {
                     const std::size_t before = Sets.size();
                     if (!ReadDataSets(text, Nodes(), limits, Sets, report, rest)) return;
                     opened_.DataFiles << name;
                     Findings().Use({}, 0,
                                    QStringLiteral("data sets: %1").arg(Sets.size() - before));
                   });
  }

  /// Reads a file of ours with what it says of its faults.
  template <class TParse>
  bool ReadOwn(const QString& name, TFileKind kind, const TLoadProgress& progress, TParse parse) {
    TLoadReport report;
    const auto read = [&](std::string_view text, const TLoadProgress& rest) {
      const QString why = ObjectionTo(kind, text);
      if (why.isEmpty()) {
        parse(text, report, rest);
      } else {
        report.Fail(why);
      }
    };
    if (!ReadText(name, progress, read)) return false;
    if (report.Cancelled()) Findings().Cancel();
    if (report.Failed()) Findings().Fail(report.First());
    if (report.Failed() || report.Cancelled()) return false;
    if (report.Ok()) return true;
    opened_.Faults << report.Sentence(name);
    Findings().Warn({}, 0, opened_.Faults.back());
    return true;
  }

  void MakeModel() {
    if (wanted_ == TWanted::DataOnly) {
      // What is wrong with them concerns shapes, too.
      const TSystems noted(Job.Systems, Findings());
      return;
    }
    if (Model && Job.HasGeometry()) {
      Findings().BeginJob();
      Findings().LeaveOut(QStringLiteral("nodes"), 0,
                          QStringLiteral("those of other files than the model file"));
    } else if (Job.HasGeometry()) {
      Model = AssembleModel(Job, &model_.Nodes, Findings());
      if (Model->Nodes.Empty()) Model.reset();
      if (Model) opened_.ModelFiles = GeometryFiles();
    }
  }

  QStringList GeometryFiles() const {
    std::set<int> files;
    for (const TPlace& place : Job.Places) files.insert(place.File);
    for (const TLocalSystem& system : Job.Systems) files.insert(system.Place.File);
    for (std::size_t i = 0; i < Job.FirstOfFile.size(); ++i) {
      const bool isLast = i + 1 == Job.FirstOfFile.size();
      const std::size_t behind = isLast ? Job.Nodes.size() : Job.FirstOfFile[i + 1];
      if (behind > Job.FirstOfFile[i]) files.insert(static_cast<int>(i));
    }
    return Named(files);
  }

  QStringList Named(const std::set<int>& files) const {
    QStringList names;
    for (const int file : files) names << names_.value(file);
    return names;
  }

  TModelNodes Nodes() const {
    return Model ? TModelNodes{Model->Nodes, Model->Index, Model->Axes}
                 : TModelNodes{model_.Nodes, model_.Index(), model_.Axes};
  }

  void MakeSets() {
    std::set<int> files;
    for (const TJobShape& shape : Job.Shapes) files.insert(shape.Place.File);
    hasShapes_ = !files.empty();
    if (!Model && model_.Units.IsGiven()) Job.LengthOfModel = model_.Units.Length;
    std::size_t taken = 0;
    for (const TDataSet& set : Sets) taken += set.Content.Nodes.Count();
    std::vector<TDataSet> made =
        AssembleShapes(Job, Nodes(), Model ? Model->Centre : model_.Centre,
                       data_.MostNodes - std::min(taken, data_.MostNodes), Findings());
    if (made.empty()) return;
    opened_.DataFiles << Named(files);
    std::ranges::move(made, std::back_inserter(Sets));
  }

  bool HasAnything(qsizetype fileCount) {
    if (Model || !Sets.empty() || !Job.Functions.empty()) return true;
    if (fileCount == 1) {
      Findings().ReturnTo(0);
    } else {
      Findings().BeginJob();
    }
    Findings().Fail(WhyNothing());
    return false;
  }

  QString WhyNothing() const {
    if (hasShapes_ && model_.Nodes.Empty()) {
      return QStringLiteral("there is no model for the shapes");
    }
    return hasShapes_ || wanted_ == TWanted::DataOnly
               ? QStringLiteral("no data set for the model was found")
               : QStringLiteral("neither a structure nor data for one were found");
  }

  const TModel& model_;
  const TMeasuredData& data_;
  TWanted wanted_;
  bool hasShapes_ = false;
  TOpenedJob& opened_;
  QStringList names_;
};

/// Replaces the present model and data by what was read.
void Take(TJobReading& reading, TModel& model, TMeasuredData& data, TOpenedJob& opened) {
  opened.HasModel = reading.Model.has_value();
  opened.HasData = !reading.Sets.empty();
  if (opened.HasModel) {
    data.Clear();  // its nodes refer to those of the model
    model.Replace(std::move(*reading.Model));
  }
  if (opened.HasData) data.Replace(std::move(reading.Sets), model);
  const TModel noModel;
  const TMeasuredData noData;
  const bool isNew = opened.HasModel || opened.HasData;
  opened.Findings.Summary = Summary(isNew ? model : noModel, isNew ? data : noData, reading.Job);
  opened.Functions = std::move(reading.Job.Functions);
}

}  // namespace

TFileContent ContentOf(const QString& fileName) { return ContentOfText(StartOf(fileName)); }

TOpenedJob OpenJob(const QStringList& fileNames, TModel& model, TMeasuredData& data, TWanted wanted,
                   const TLoadProgress& progress, TMatrixReading matrices) {
  TOpenedJob opened;
  if (TLoadingMark::On(&model)) {
    opened.Findings.Fail(QStringLiteral("another file is being read"));
    return opened;
  }
  try {
    TJobReading reading(model, data, wanted, opened);
    reading.Job.Matrices = matrices;
    const auto read = [&] {
      const TLoadingMark mark(&model);
      return reading.Read(fileNames, progress);
    };
    if (read()) Take(reading, model, data, opened);
  } catch (const std::bad_alloc&) {
    opened.Findings.Fail(QStringLiteral("not enough memory"));
  }
  return opened;
}

#pragma once

#include <QString>
#include <QStringList>
#include <cstddef>
#include <map>
#include <tuple>
#include <vector>

/// "1 node", "37 nodes".
QString Counted(std::size_t count, const QString& what);

/// What the readers met in the files of one job, for the user: what each data set was used for,
/// what was left out and why, and what is worth knowing. Bounded: a file full of faults costs no
/// memory. Of the findings of one kind for one type of data set of a file the first are kept, many
/// of what was used and a few of the others; the rest are counted. Texts are kept on one line and
/// without what would steer a terminal.
class TFindings {
 public:
  enum class TKind { Used, LeftOut, Warning };
  static constexpr int kJob = -1;  ///< in place of a file: the job as a whole

  struct TFinding {
    TKind Kind = TKind::Used;
    int File = 0;          ///< index in Files(), or kJob
    std::size_t Line = 0;  ///< from 1; 0 when no line is to blame
    QString Set;           ///< "2411", "58b", "table of nodes"; empty if none is concerned
    QString Text;          ///< one clause: "37 nodes", "its type is not known"
  };

  /// Names the file that the findings from here on are about; `name` with its folder.
  void BeginFile(const QString& name);
  /// The same for a file that was named before, by its index in Files(), or for the job as a whole.
  void ReturnTo(int file) { file_ = file; }
  void BeginJob() { file_ = kJob; }

  /// The data set at `line` of the file and what it was used for.
  void Use(const QString& set, std::size_t line, const QString& what);
  /// A data set, or a part of it, that was left out.
  void LeaveOut(const QString& set, std::size_t line, const QString& why);
  /// Something worth knowing.
  void Warn(const QString& set, std::size_t line, const QString& what);

  /// Nothing could be read from the present file because "it is a folder".
  void Fail(const QString& why);
  void Cancel() { cancelled_ = true; }

  bool Failed() const {
    return !failure_.isEmpty();
  }  ///< no file gave anything because one could not be read
  bool Cancelled() const { return cancelled_; }
  const QStringList& Files() const { return files_; }
  const std::vector<TFinding>& All() const { return findings_; }
  /// How many things were left out or are worth knowing, those that were only counted too.
  std::size_t ToKnow() const { return toKnow_; }

  /// What the job gave, for the status bar: "37 nodes, 53 bars, 11 complex modes from 0.76 to 29.9
  /// Hz"; set by whoever assembles it.
  QString Summary;

  /// The summary, and how much there is to know: "...; 2 things to know"; or which file could not
  /// be read. Empty if the user cancelled.
  QString Line() const;
  /// The whole list as plain text, for a window, the clipboard or standard output: all files
  /// together, then file by file, what is worth knowing first.
  QString Text() const;

 private:
  /// Findings of one kind for one type of data set of one file.
  using TGroup = std::tuple<int, TKind, QString>;
  struct TCount {
    std::size_t Kept = 0;
    std::size_t More = 0;  ///< that were only counted
  };

  void Add(TKind kind, const QString& set, std::size_t line, const QString& text);
  QString TextOf(int file) const;
  QString TextOf(int file, TKind kind) const;

  QStringList files_;
  std::vector<TFinding> findings_;
  std::map<TGroup, TCount> counts_;
  std::size_t toKnow_ = 0;
  int file_ = kJob;
  QString failure_;  ///< a sentence; empty if no file failed
  bool cancelled_ = false;
};

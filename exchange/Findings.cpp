#include "exchange/Findings.h"

#include <algorithm>

#include "model/Oneline.h"

namespace {

constexpr std::size_t kMostGroups = 500;
constexpr qsizetype kLongestSet = 40;
constexpr qsizetype kLongestText = 400;
constexpr qsizetype kLongestName = 4096;

/// Of a group. What was used is the list of the file's content, faults are rather alike.
std::size_t MostOfGroup(TFindings::TKind kind) {
  return kind == TFindings::TKind::Used ? 1000 : 20;
}

/// Of all: what was used leaves room for what is worth knowing.
std::size_t MostFindings(TFindings::TKind kind) {
  return kind == TFindings::TKind::Used ? 4000 : 8000;
}

QString Heading(TFindings::TKind kind) {
  switch (kind) {
    case TFindings::TKind::Used:
      return QStringLiteral("Used");
    case TFindings::TKind::LeftOut:
      return QStringLiteral("Left out");
    case TFindings::TKind::Warning:
      break;
  }
  return QStringLiteral("To know");
}

QString LineOf(const TFindings::TFinding& finding) {
  return finding.Line > 0 ? QStringLiteral("line %1").arg(finding.Line) : QString();
}

}  // namespace

QString Counted(std::size_t count, const QString& what) {
  return QString::number(count) + ' ' + what + (count == 1 ? QString() : QStringLiteral("s"));
}

void TFindings::BeginFile(const QString& name) {
  file_ = static_cast<int>(files_.size());
  files_ << name;
}

void TFindings::Use(const QString& set, std::size_t line, const QString& what) {
  Add(TKind::Used, set, line, what);
}

void TFindings::LeaveOut(const QString& set, std::size_t line, const QString& why) {
  Add(TKind::LeftOut, set, line, why);
}

void TFindings::Warn(const QString& set, std::size_t line, const QString& what) {
  Add(TKind::Warning, set, line, what);
}

void TFindings::Fail(const QString& why) {
  LeaveOut({}, 0, QStringLiteral("it cannot be read: ") + why);
  if (Failed()) return;
  const QString name = file_ == kJob ? QStringLiteral("the files") : ShownFileName(files_[file_]);
  failure_ = QStringLiteral("Cannot read %1: %2.").arg(name, OneLine(why));
}

void TFindings::Add(TKind kind, const QString& set, std::size_t line, const QString& text) {
  toKnow_ += kind != TKind::Used;
  TGroup group{file_, kind, OneLine(set, kLongestSet)};
  // Beyond some types of data sets, as only a hostile file has them, all others share one count.
  if (counts_.size() >= kMostGroups && !counts_.contains(group)) {
    std::get<QString>(group).clear();
  }
  TCount& count = counts_[group];
  if (count.Kept == MostOfGroup(kind) || findings_.size() >= MostFindings(kind)) {
    ++count.More;
    return;
  }
  ++count.Kept;
  findings_.push_back({kind, file_, line, OneLine(set, kLongestSet), OneLine(text, kLongestText)});
}

QString TFindings::Line() const {
  if (cancelled_) return {};
  if (Failed()) return failure_;
  QString line = Summary;
  if (toKnow_ == 0) return line;
  if (!line.isEmpty()) line += QStringLiteral("; ");
  return line + (toKnow_ == 1 ? QStringLiteral("1 thing to know")
                              : QStringLiteral("%1 things to know").arg(toKnow_));
}

QString TFindings::Text() const {
  QString text = Summary.isEmpty() ? QString() : OneLine(Summary, kLongestText) + '\n';
  text += TextOf(kJob);
  for (int file = 0; file < files_.size(); ++file) text += TextOf(file);
  return text;
}

QString TFindings::TextOf(int file) const {
  QString text;
  for (const TKind kind : {TKind::Warning, TKind::LeftOut, TKind::Used}) {
    text += TextOf(file, kind);
  }
  if (file == kJob) return text.isEmpty() ? text : QStringLiteral("\nAll files together\n") + text;
  if (text.isEmpty()) text = QStringLiteral("  Nothing was found in it\n");
  return '\n' + OneLine(files_[file], kLongestName) + '\n' + text;
}

QString TFindings::TextOf(int file, TKind kind) const {
  std::vector<const TFinding*> found;
  qsizetype setWidth = 0;
  qsizetype lineWidth = 0;
  for (const TFinding& finding : findings_) {
    if (finding.File != file || finding.Kind != kind) continue;
    found.push_back(&finding);
    setWidth = std::max(setWidth, finding.Set.size());
    lineWidth = std::max(lineWidth, LineOf(finding).size());
  }
  std::ranges::stable_sort(found, {}, &TFinding::Line);

  QString text;
  const auto addRow = [&](const QString& set, const QString& line, const QString& what) {
    text += QStringLiteral("    ");
    if (setWidth > 0) text += set.leftJustified(setWidth + 2);
    if (lineWidth > 0) text += line.leftJustified(lineWidth + 2);
    text += what + '\n';
  };
  for (const TFinding* finding : found) addRow(finding->Set, LineOf(*finding), finding->Text);
  for (auto at = counts_.lower_bound({file, kind, {}}); at != counts_.end(); ++at) {
    const auto& [group, count] = *at;
    const auto& [groupFile, groupKind, set] = group;
    if (groupFile != file || groupKind != kind) break;
    if (count.More > 0) addRow(set, {}, QStringLiteral("and %1 more").arg(count.More));
  }
  return text.isEmpty() ? text : QStringLiteral("  ") + Heading(kind) + '\n' + text;
}

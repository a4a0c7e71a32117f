#include "exchange/Lengths.h"

#include <algorithm>
#include <cmath>

#include "model/Oneline.h"

namespace {

/// Units as far apart as no two are: a fault of the file.
constexpr double kLargestFactor = 1e12;

bool IsUnit(double unit) { return unit >= 1.0 / kLargestFactor && unit <= kLargestFactor; }

}  // namespace

TLengths::TLengths(const TJob& job) : job_(job) {
  if (IsUnit(job.LengthOfModel)) {
    unit_ = job.LengthOfModel;
    return;
  }
  const auto found = std::ranges::find_if(job.LengthOfFile, IsUnit);
  if (found == job.LengthOfFile.end()) return;
  unit_ = *found;
  first_ = static_cast<int>(found - job.LengthOfFile.begin());
}

double TLengths::UnitOf(int file) const {
  const auto at = static_cast<std::size_t>(file);
  const double unit = file >= 0 && at < job_.LengthOfFile.size() ? job_.LengthOfFile[at] : 0.0;
  return IsUnit(unit) ? unit : 0.0;
}

double TLengths::Factor(int file) const {
  const double unit = UnitOf(file);
  return unit > 0.0 ? unit_ / unit : 1.0;
}

bool TLengths::HasNodes(std::size_t file) const {
  const auto& first = job_.FirstOfFile;
  if (file >= first.size()) return false;
  return (file + 1 < first.size() ? first[file + 1] : job_.Nodes.size()) > first[file];
}

std::vector<TLocalSystem> TLengths::Systems() const {
  std::vector<TLocalSystem> systems = job_.Systems;
  for (TLocalSystem& system : systems) system.Origin = system.Origin * Factor(system.Place.File);
  return systems;
}

QString TLengths::NameOfFirst(const TFindings& findings) const {
  if (first_ < 0) return QStringLiteral("the model");
  return first_ < findings.Files().size() ? ShownFileName(findings.Files()[first_]) : QString();
}

void TLengths::NoteFactor(int file, const QString& what, TFindings& findings) const {
  const double factor = Factor(file);
  if (std::abs(factor - 1.0) <= 1e-9) return;
  findings.ReturnTo(file);
  findings.Warn(QStringLiteral("units"), 0,
                QStringLiteral("its %1 are multiplied by %2 to have the unit of %3")
                    .arg(what)
                    .arg(factor)
                    .arg(NameOfFirst(findings)));
}

void TLengths::Note(TFindings& findings) const {
  if (unit_ == 0.0) return;
  for (std::size_t file = 0; file < job_.LengthOfFile.size(); ++file) {
    if (!HasNodes(file)) continue;
    const int index = static_cast<int>(file);
    NoteFactor(index, QStringLiteral("lengths"), findings);
    if (UnitOf(index) > 0.0) continue;
    findings.ReturnTo(index);
    findings.Warn(QStringLiteral("units"), 0,
                  QStringLiteral("it names none; its lengths are taken for those of %1")
                      .arg(NameOfFirst(findings)));
  }
}

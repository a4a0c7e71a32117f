#include "components/controls/Colorlevels.h"

#include <algorithm>
#include <cmath>

#include "model/Colortext.h"

std::optional<TColorLevel> TColorLevel::FromText(const QString& text) {
  constexpr int kTextField = 3;
  TColorLevel level;
  bool isNumber = false;
  level.Limit = text.section(';', 0, 0).trimmed().toDouble(&isNumber);
  if (!isNumber || !std::isfinite(level.Limit)) return {};
  const auto takeColor = [&](int field, TColor& color) {
    const QString name = text.section(';', field, field).trimmed();
    if (name.isEmpty()) return true;
    const std::optional<TColor> known = ColorFromText(name);
    if (known) color = *known;
    return known.has_value();
  };
  if (!takeColor(1, level.Color) || !takeColor(2, level.FontColor)) return {};
  level.Text = text.section(';', kTextField).trimmed();
  return level;
}

void TColorLevels::SetLevels(const QStringList& levels) {
  if (levels == texts_ || levels.size() > kMaxCount) return;
  std::vector<TColorLevel> taken;
  for (const QString& text : levels) {
    const std::optional<TColorLevel> level = TColorLevel::FromText(text);
    if (!level) return;
    taken.push_back(*level);
  }
  std::ranges::stable_sort(taken, {}, &TColorLevel::Limit);
  levels_ = std::move(taken);
  texts_ = levels;
  emit OnChange(this);
}

void TColorLevels::SetHysteresis(double hysteresis) {
  if (std::isfinite(hysteresis) && hysteresis >= 0.0) Store(hysteresis_, hysteresis);
}

int TColorLevels::LevelOf(double value, int last) const {
  if (std::isnan(value)) return -1;
  const auto above = std::ranges::upper_bound(levels_, value, {}, &TColorLevel::Limit);
  const int reached = static_cast<int>(above - levels_.begin()) - 1;
  int level = std::min(last, Count() - 1);
  while (level > reached && value < Get(level).Limit - hysteresis_) --level;
  return std::max(level, reached);
}

bool TColorLevels::SameAs(const TPersistent* other) const {
  const auto* levels = qobject_cast<const TColorLevels*>(other);
  return levels && hysteresis_ == levels->hysteresis_ && levels_ == levels->levels_;
}

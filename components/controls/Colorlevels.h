#pragma once

#include <QStringList>
#include <optional>
#include <vector>

#include "components/links/Propclasses.h"
#include "model/Color.h"

/// How a display looks from a limit upwards, to the next limit.
struct TColorLevel {
  double Limit = 0.0;
  TColor Color = TColor::None();      ///< of the background
  TColor FontColor = TColor::None();  ///< of the text
  QString Text;                       ///< instead of the usual one, if there is one

  /// From "LIMIT; COLOR; FONTCOLOR; TEXT", such as "80; #ffb000; #000000; Warning {value}". What
  /// follows the colour may be left out. Nothing for a text that is no level.
  static std::optional<TColorLevel> FromText(const QString& text);

  friend bool operator==(const TColorLevel&, const TColorLevel&) = default;
};

/// Levels by ascending limit. A member of its owner; GUI thread only.
class TColorLevels : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(QStringList Levels READ GetLevels WRITE SetLevels)
  Q_PROPERTY(double Hysteresis READ GetHysteresis WRITE SetHysteresis)

 public:
  static constexpr int kMaxCount = 1000;

  using TPersistent::TPersistent;

  /// One text each, see TColorLevel; as they were set.
  const QStringList& GetLevels() const { return texts_; }
  /// Ignored if one of them is no level, or if they are more than kMaxCount.
  void SetLevels(const QStringList& levels);
  /// How far a value has to fall below the limit of its level before it leaves that: a value that
  /// trembles about a limit then does not flicker. Initially 0; negative or not finite is ignored.
  double GetHysteresis() const { return hysteresis_; }
  void SetHysteresis(double hysteresis);

  int Count() const { return static_cast<int>(levels_.size()); }
  const TColorLevel& Get(int index) const { return levels_[static_cast<std::size_t>(index)]; }

  /// Index of the level of a value which was in level `last` before, or -1 below all limits and for
  /// a value that is not a number.
  int LevelOf(double value, int last) const;

  bool SameAs(const TPersistent* other) const override;

 private:
  QStringList texts_;
  std::vector<TColorLevel> levels_;  ///< by ascending limit
  double hysteresis_ = 0.0;
};

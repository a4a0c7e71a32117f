#pragma once

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "components/links/Compclasses.h"

/// Samples several data controls together: each value that the last of them notifies completes a
/// row of the present values of all. So the controls that a provider serves in turn give one row
/// per turn. A member of its component; GUI thread only.
class TRowSampler : public QObject {
  Q_OBJECT

 public:
  static constexpr int kMaxControls = 255;

  explicit TRowSampler(QObject* owner);

  /// Data controls, one per column.
  TKorvalCompList* Controls() { return &controls_; }
  const TKorvalCompList* Controls() const { return &controls_; }

  /// Called with each row: its time in days since 30 December 1899, which is that of the last
  /// control or, if that has none, the present time, and one value per control.
  std::function<void(double time, std::span<const double> values)> OnRow;

 private:
  void FollowLast();
  void Sample();

  TKorvalCompList controls_;
  std::unique_ptr<TValueLink> link_;  ///< to the last control
  const QObject* last_ = nullptr;     ///< for comparing only
  std::vector<double> row_;
};

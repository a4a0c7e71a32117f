#pragma once

#include "components/graphing/Graphseries.h"

/// A cross-hair at one position, dragged by itself or by one of its grid lines; a grid line moves
/// its own coordinate alone.
class TSliderSeries : public TCustomGraphSeries {
  Q_OBJECT
  Q_PROPERTY(double PositionX READ GetPositionX WRITE SetPositionX)
  Q_PROPERTY(double PositionY READ GetPositionY WRITE SetPositionY)
  Q_PROPERTY(bool Active READ GetActive WRITE SetActive)
  Q_PROPERTY(bool ShowGridX READ GetShowGridX WRITE SetShowGridX)
  Q_PROPERTY(bool ShowGridY READ GetShowGridY WRITE SetShowGridY)

 public:
  static constexpr int kArm = 7;           ///< half the size of the cross-hair, logical pixels
  static constexpr int kHitTolerance = 4;  ///< of a grid line, logical pixels

  using TCustomGraphSeries::TCustomGraphSeries;

  TCoordinate GetPosition() const { return position_; }
  double GetPositionX() const { return position_.X; }
  double GetPositionY() const { return position_.Y; }
  bool GetActive() const { return active_; }
  bool GetShowGridX() const { return showGridX_; }
  bool GetShowGridY() const { return showGridY_; }

  /// A position that is not finite is ignored.
  void SetPosition(const TCoordinate& position);
  void SetPositionX(double x) { SetPosition({x, position_.Y}); }
  void SetPositionY(double y) { SetPosition({position_.X, y}); }
  /// Only an active slider can be dragged.
  void SetActive(bool active);
  /// The line through the position at constant X, over the height of the panel.
  void SetShowGridX(bool show);
  /// The line through the position at constant Y, over the width of the panel.
  void SetShowGridY(bool show);

  /// Moves to the values under a pixel of the panel; nothing without a panel.
  void SetSliderPos(QPoint pixel);

  void Draw(QPainter* painter) override;
  void UpdateRangeX() override;
  void UpdateRangeY() override;
  bool Grab(QPoint pixel) override;
  bool Drag(QPoint pixel) override;
  void Release() override { hold_ = THold::kNone; }

 signals:
  /// The user has dragged the slider; its position is the new one.
  void OnDragged(QObject* sender);

 private:
  enum class THold { kNone, kBoth, kX, kY };
  THold HoldAt(QPoint pixel) const;
  QPoint Pixel() const;

  TCoordinate position_;
  bool active_ = true;
  bool showGridX_ = false;
  bool showGridY_ = false;
  THold hold_ = THold::kNone;
  QPoint grip_;  ///< from the mouse to the slider's pixel
};

#pragma once

#include <QPoint>
#include <QRect>
#include <span>
#include <vector>

#include "components/links/Propclasses.h"
#include "model/Color.h"

class QPainter;

/// The pointer of an instrument: one of nine outlines about a centre of rotation, with an optional
/// drop shadow. A member of its owner; GUI thread only.
///
/// Angles are in degrees: 0 points to the right, positive ones turn clockwise on the screen.
class TNeedle : public TPersistent {
  Q_OBJECT

 public:
  enum TNeedleType : int {
    ntArrow1,  ///< broad arrow with a notched tail
    ntArrow2,  ///< shaft with a barb in the middle and a fork at the tail
    ntArrow3,  ///< wedge
    ntArrow4,  ///< compass star with one long point
    ntArrow5,  ///< square with one long point
    ntArrow6,  ///< rhombus
    ntArrow7,  ///< arrow heads on both ends of a thin shaft
    ntArrow8,  ///< arrow with a head and a notched tail
    ntArrow9   ///< line with a short tail
  };
  Q_ENUM(TNeedleType)

 private:
  Q_PROPERTY(TColor LineColor READ GetLineColor WRITE SetLineColor)
  Q_PROPERTY(TColor FillColor READ GetFillColor WRITE SetFillColor)
  Q_PROPERTY(TColor ShaddowColor READ GetShaddowColor WRITE SetShaddowColor)
  Q_PROPERTY(int Height READ GetHeight WRITE SetHeight)
  Q_PROPERTY(int Length READ GetLength WRITE SetLength)
  Q_PROPERTY(int LineWidth READ GetLineWidth WRITE SetLineWidth)
  Q_PROPERTY(TNeedleType Type READ GetType WRITE SetType)
  Q_PROPERTY(int X READ GetX WRITE SetX)
  Q_PROPERTY(int Y READ GetY WRITE SetY)

 public:
  static constexpr int kTypeCount = 9;

  explicit TNeedle(QObject* owner = nullptr);

  TColor GetLineColor() const { return lineColor_; }
  /// None leaves the inside, and that of the shadow, hollow.
  TColor GetFillColor() const { return fillColor_; }
  /// None switches the shadow off.
  TColor GetShaddowColor() const { return shaddowColor_; }
  void SetLineColor(TColor color) { Store(lineColor_, color); }
  void SetFillColor(TColor color) { Store(fillColor_, color); }
  void SetShaddowColor(TColor color) { Store(shaddowColor_, color); }

  /// How far the shadow lies to the right and below, in pixels.
  int GetHeight() const { return height_; }
  void SetHeight(int height) { Store(height_, height); }
  /// Of the pen for outline and shadow, in pixels; below 0 ignored, 0 is the thinnest line.
  int GetLineWidth() const { return lineWidth_; }
  void SetLineWidth(int width);

  /// Centre of rotation, in pixels.
  int GetX() const { return x_; }
  int GetY() const { return y_; }
  /// From the centre to the tip, in pixels; below 0 ignored.
  int GetLength() const { return length_; }
  /// Degrees; not finite is ignored.
  double GetAngle() const { return angle_; }
  TNeedleType GetType() const { return type_; }
  void SetX(int x);
  void SetY(int y);
  void SetLength(int length);
  void SetAngle(double angleDeg);
  /// Centre and length in one step.
  void SetXYLength(QPoint centre, int length);
  /// A value that is no type is ignored.
  void SetType(TNeedleType type);

  /// Corners of the outline; the first is the tip.
  std::span<const QPoint> Points() const { return points_; }
  /// Computes the outline anew, then fires OnChange.
  void Validate();

  /// Draws the shadow and the needle over it. Without a canvas nothing happens. `rect` is that of
  /// the instrument; the needle is not cut off there.
  void Draw(QPainter* canvas, const QRect& rect) const;

  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  void SetPlace(int& field, int value);
  void ComputePoints();
  void DrawOutline(QPainter& canvas, int shift, TColor line, TColor fill) const;

  TColor lineColor_ = TColor::FromRgb(255, 0, 0);
  TColor fillColor_ = TColor::None();
  int x_ = 0;
  int y_ = 0;
  int length_ = 40;
  double angle_ = 0.0;
  std::vector<QPoint> points_;
  TNeedleType type_ = ntArrow9;
  TColor shaddowColor_ = TColor::FromRgb(128, 128, 128);
  int height_ = 4;
  int lineWidth_ = 2;
};

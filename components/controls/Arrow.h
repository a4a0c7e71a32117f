#pragma once

#include <QPoint>
#include <QPointer>
#include <QRect>
#include <vector>

#include "components/controls/Compbase.h"
#include "components/links/Componentref.h"
#include "components/links/Objlists.h"
#include "model/Color.h"

class TArrow;
class QPainter;

/// One end of an arrow: a place on a side of another control, or of the arrow's own box, and a
/// head. A member of its arrow; GUI thread only. Points are in the coordinates of the arrow's
/// parent, in pixels.
class TArrowEnd : public TPersistent {
  Q_OBJECT

 public:
  enum TArrowStyle : int {
    asNone,
    asArrow,
    asCircle  ///< a disc about the end point
  };
  Q_ENUM(TArrowStyle)

  enum TAttachPos : int { apControlLeft, apControlTop, apControlRight, apControlBottom };
  Q_ENUM(TAttachPos)

 private:
  Q_PROPERTY(TArrow* Arrow READ GetArrow STORED false DESIGNABLE false)
  Q_PROPERTY(TArrowStyle Style READ GetStyle WRITE SetStyle)
  Q_PROPERTY(TAttachPos AttachTo READ GetAttachTo WRITE SetAttachTo)
  Q_PROPERTY(QString Control READ GetControlName WRITE SetControlName)

 public:
  explicit TArrowEnd(TArrow* arrow);

  TArrow* GetArrow() const { return arrow_; }

  TArrowStyle GetStyle() const { return style_; }
  void SetStyle(TArrowStyle style);
  /// The side in whose middle the line ends.
  TAttachPos GetAttachTo() const { return attachTo_; }
  void SetAttachTo(TAttachPos side);

  /// The control at which the line ends and which it follows; null for none. Any widget but an
  /// arrow. Not owned, may go first.
  QWidget* GetControl() const { return control_.Get(); }
  void SetControl(QWidget* control) { control_.Set(control); }
  /// The control's object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetControlName() const { return control_.GetName(); }
  void SetControlName(const QString& name) { control_.SetName(name); }
  void Loaded() { control_.Loaded(); }

  QPoint GetPos() const { return pos_; }
  /// Finds the end point: the middle of the side of the attached control. A free end lies on the
  /// opposite side of the arrow's own box, on purpose: the head, which points to a control on the
  /// named side, then points out of the box.
  void DefinePos();
  /// Puts a free end to a place of its own until it is defined anew.
  void SetPos(QPoint pos) { pos_ = pos; }
  /// The arrow's origin, which is subtracted from every coordinate in drawing.
  void SetShift(QPoint shift) { shift_ = shift; }

  /// Draws the head with the painter's pen colour.
  void DrawArrow(QPainter& painter) const;

  /// Copies style, side and control.
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 protected:
  /// Follows the attached control, and the widgets in which it lies, as they move and resize.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  friend class TArrow;
  void ControlChanged();
  void TrapControlPos(QWidget* control);
  void WatchUpTo(const QWidget* other, QWidget* widget);
  void Watch(QWidget* widget);

  TArrow* arrow_;
  QPoint shift_;
  TAttachPos attachTo_ = apControlBottom;
  TComponentRef<QWidget> control_;
  std::vector<QPointer<QWidget>> watched_;  ///< the control, and what either of the two lies in
  QPoint pos_;
  TArrowStyle style_ = asNone;
};

/// A line between two ends, each of which follows a control or is free. The arrow encloses the line
/// if one is attached. It lets the mouse through, but while its form is designed. GUI thread only.
class TArrow : public TComponentControl {
  Q_OBJECT
  Q_PROPERTY(TArrowEnd* ArrowStart READ GetArrowStart WRITE SetArrowStart)
  Q_PROPERTY(TArrowEnd* ArrowEnd READ GetArrowEnd WRITE SetArrowEnd)
  Q_PROPERTY(TColor Color READ GetColor WRITE SetColor)

 public:
  /// Pixels between the line and the sides of the arrow's box.
  static constexpr int kMargin = 8;

  explicit TArrow(QWidget* parent = nullptr);

  TArrowEnd* GetArrowStart() { return &start_; }
  TArrowEnd* GetArrowEnd() { return &end_; }
  void SetArrowStart(const TArrowEnd* end) { start_.Assign(end); }
  void SetArrowEnd(const TArrowEnd* end) { end_.Assign(end); }

  /// Of line and heads; None is the colour of the form's texts.
  TColor GetColor() const { return color_; }
  void SetColor(TColor color);

  /// The line, in the coordinates of the parent.
  const TPointList& Points() const { return points_; }
  /// Makes the line anew from the two end points and, if an end is attached, takes the box about
  /// it.
  void AdjustBounds();

  void Loaded() override;
  QSize sizeHint() const override { return {60, 30}; }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  friend class TArrowEnd;
  bool IsAttached() const { return start_.GetControl() || end_.GetControl(); }
  void EndMoved(TArrowEnd& end);
  void BoundsChanged();
  void DefineFreeEnds();
  void RestoreFreeEnd();
  void TakeMouse();

  TPointList points_;
  TArrowEnd start_{this};
  TArrowEnd end_{this};
  TColor color_ = TColor::None();
  bool changing_ = false;  ///< the arrow is changing its own bounds
  QRect ownBounds_;        ///< as it took them last
};

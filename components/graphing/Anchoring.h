#pragma once

#include <QObject>
#include <QPointer>
#include <QSize>
#include <QWidget>

/// Keeps a control in its place while its parent changes size: docked to a side, or at the
/// distances from the parent's sides that it has been given. A parent with a Qt layout places its
/// children itself, and nothing happens here. A member of its control; GUI thread only.
class TAnchoring : public QObject {
  Q_OBJECT

 public:
  enum TAlign : int { alNone, alTop, alBottom, alLeft, alRight, alClient };
  Q_ENUM(TAlign)
  /// The sides of the parent that keep their distance; with neither of two opposite sides the
  /// control stays in the middle between them.
  enum TAnchor : int { akLeft = 1, akTop = 2, akRight = 4, akBottom = 8 };
  Q_DECLARE_FLAGS(TAnchors, TAnchor)
  Q_FLAG(TAnchors)

  explicit TAnchoring(QWidget* control);

  TAlign GetAlign() const { return align_; }
  TAnchors GetAnchors() const { return anchors_; }
  void SetAlign(TAlign align);
  void SetAnchors(TAnchors anchors);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void WatchParent();
  void Dock();
  /// Places the control in its parent, which had the size `before` until now.
  void Follow(QSize before);

  QWidget* control_;  ///< the owner
  QPointer<QWidget> parent_;
  QSize parentSize_;
  /// Where the control stood when it was last placed by others, and its parent's size then: from
  /// there each place is worked out, so that halves of pixels and sizes cut at 0 do not add up.
  QRect home_;
  QSize homeParentSize_;
  QRect followed_;  ///< where Follow left it; empty if home_ is to be taken anew
  TAlign align_ = alNone;
  TAnchors anchors_ = TAnchors(akLeft) | akTop;
};
Q_DECLARE_OPERATORS_FOR_FLAGS(TAnchoring::TAnchors)

#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QWidget>

/// Bounds for a window so that the user can see and reach all of it: the place and size wanted if
/// they lie within the screens, else moved into the screen they overlap most (the first one if
/// none) and cut to its size. Never smaller than `minimum`, unless the screen is. Takes any
/// numbers.
QRect FitToScreens(QPoint place, QSize size, const QList<QRect>& screens, QSize minimum);

/// Knows where a window stands, or stood before it was maximised, shown on the full screen or as an
/// icon: the place of its frame and the size inside. Set and saved from run to run, a window stays
/// where it is. GUI thread only.
class TWindowPlace : public QObject {
 public:
  explicit TWindowPlace(QWidget* window);  ///< not owned

  void Set(const QRect& bounds);
  QRect Bounds() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool IsOrdinary() const;
  void Note();

  QPointer<QWidget> window_;
  QRect bounds_;  ///< the last ones as an ordinary window
  bool asked_ = false;
};

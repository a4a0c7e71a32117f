#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <QWidget>

#include "components/links/Outside.h"

/// Places of picture and caption in an icon control, in its own coordinates.
struct TIconLayout {
  QRect icon;     ///< null if there is none
  QRect caption;  ///< null if there is none
  QSize size;     ///< of the whole
};

/// Base of the components: a widget that knows whether its form is being read and whether it may be
/// seen. A component without a face of its own is seen while its form is designed and hidden at run
/// time; one with a face is seen at run time unless it is switched off.
class TComponentControl : public QWidget {
  Q_OBJECT

 public:
  explicit TComponentControl(QWidget* parent = nullptr);

  /// Whether a component with a face shows it at run time.
  bool GetVisible() const { return visible_; }
  void SetVisible(bool visible);

  /// While its form is being read: setters store, and pass nothing on to other components.
  bool IsLoading() const { return loading_; }
  /// To be called by whoever reads a form, after making the component.
  void BeginLoading() { loading_ = true; }
  /// To be called once all components of the form have their properties. Descendants look up here
  /// the components that they know by name, and call their base last, which ends the loading.
  virtual void Loaded() { loading_ = false; }

  /// What it wants from outside its panel, by its present properties, whether it is switched on or
  /// not: everything that it may ever connect to, open, write, or read elsewhere.
  virtual void AddWishes(TWishes& wishes) const {Q_UNUSED(wishes)} TWishes Wishes() const;
  /// It wants something, and its panel is at rest: setters store, as while its form is being read.
  bool IsHeld() const { return IsAtRest(this) && !Wishes().empty(); }
  /// Whether a switch that is thrown is only remembered.
  bool IsWaiting() const { return IsLoading() || IsHeld(); }
  /// To be called when a panel that was at rest has been started: does what its properties say.
  virtual void Started() {}

  /// Shows only what may be seen, see the class.
  void setVisible(bool visible) override;

 protected:
  /// Says that the component has something to show at run time; for the constructors of
  /// descendants.
  void SetFace(bool face);

  bool event(QEvent* event) override;

 private:
  bool MayBeSeen() const;
  void UpdateVisibility();

  bool visible_ = true;
  bool face_ = false;
  bool loading_ = false;
};

/// A component that shows a small picture and a caption, and takes the size that they need.
class TIconControl : public TComponentControl {
  Q_OBJECT
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
  Q_PROPERTY(TCaptionPos CaptionPos READ GetCaptionPos WRITE SetCaptionPos)
  Q_PROPERTY(bool ShowIcon READ GetShowIcon WRITE SetShowIcon)
  Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)

 public:
  /// Where the caption stands beside the picture; cpNone shows no caption.
  enum TCaptionPos : int { cpNone, cpTop, cpBottom, cpLeft, cpRight };
  Q_ENUM(TCaptionPos)

  explicit TIconControl(QWidget* parent = nullptr);

  /// Descendants whose caption costs much may make it when it is asked for.
  virtual const QString& GetCaption() const { return caption_; }
  void SetCaption(const QString& caption);
  TCaptionPos GetCaptionPos() const { return captionPos_; }
  void SetCaptionPos(TCaptionPos pos);
  bool GetShowIcon() const { return showIcon_; }
  void SetShowIcon(bool show);

  /// Name of the picture, see Iconimages.h; empty draws none and takes its room all the same.
  const QString& GetIconImage() const { return iconImage_; }
  /// Of the picture, in logical pixels; sizes below 1 are ignored. Initially 24 x 24.
  QSize GetImageSize() const { return imageSize_; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void SetIconImage(const QString& name);
  void SetImageSize(QSize size);

  /// The left button was pressed twice on the component: its editor, if it has one.
  virtual void DoubleClicked() {}

  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  TIconLayout Layout() const;
  void ContentChanged();

  QString caption_;
  TCaptionPos captionPos_ = cpRight;
  bool showIcon_ = true;
  QString iconImage_;
  QSize imageSize_{24, 24};
};

/// Whether `object` is a component whose form is being read. Null is none.
bool IsLoading(const QObject* object);

/// Puts a caption of size `text` beside a picture of size `image`, centred on each other across
/// the line that joins them. An empty size is left out.
TIconLayout LayOutIcon(QSize image, QSize text, TIconControl::TCaptionPos pos);

/// A component that is switched on and off: it has one picture each for idle, active and pressed.
/// At run time a click of the left button throws the switch.
class TStateControl : public TIconControl {
  Q_OBJECT
  Q_PROPERTY(bool Active READ GetActive WRITE SetActive)

 public:
  explicit TStateControl(QWidget* parent = nullptr);

  bool GetActive() const { return active_; }
  /// Descendants start and stop their work here; the base stores the state, shows its picture and
  /// fires OnActiveChanged.
  virtual void SetActive(bool active);

 signals:
  void OnActiveChanged(QObject* sender);

 protected:
  void SetStateImages(const QString& idle, const QString& active, const QString& down);

  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void SetDown(bool down);
  void ShowState();

  bool active_ = false;
  bool down_ = false;
  QString idleImage_;
  QString activeImage_;
  QString downImage_;
};

#pragma once

#include <QAbstractButton>
#include <QPixmap>
#include <QPointer>
#include <functional>

/// Pictures of one size, drawn on request for the pixel density of the screen that shows them.
/// GUI thread only.
class TImageList : public QObject {
  Q_OBJECT

 public:
  /// Paints picture `index` into (0, 0, Size()).
  using TPainterFunction = std::function<void(QPainter& painter, int index)>;

  explicit TImageList(QSize size, QObject* parent = nullptr) : QObject(parent), size_(size) {}

  QSize Size() const { return size_; }
  int Count() const { return count_; }
  /// Replaces all pictures.
  void SetImages(int count, TPainterFunction paint);
  /// The picture for a screen of this pixel density; empty outside 0..Count()-1.
  QPixmap Image(int index, qreal devicePixelRatio) const;

 signals:
  void OnChange(QObject* sender);

 private:
  QSize size_;
  int count_ = 0;
  TPainterFunction paint_;
};

/// A button whose face is one picture of an image list, chosen by its state. As a state button it
/// keeps a Down state, changed by a click before the click handlers run. GUI thread only.
class TImageButton : public QAbstractButton {
  Q_OBJECT
  Q_PROPERTY(TImageList* Images READ GetImages WRITE SetImages)
  Q_PROPERTY(int UpIndex READ GetUpIndex WRITE SetUpIndex)
  Q_PROPERTY(int DownIndex READ GetDownIndex WRITE SetDownIndex)
  Q_PROPERTY(int HighlightIndex READ GetHighlightIndex WRITE SetHighlightIndex)
  Q_PROPERTY(int DisabledIndex READ GetDisabledIndex WRITE SetDisabledIndex)
  Q_PROPERTY(bool StateButton READ GetStateButton WRITE SetStateButton)

 public:
  explicit TImageButton(QWidget* parent = nullptr);

  TImageList* GetImages() const { return images_; }
  int GetUpIndex() const { return upIndex_; }
  int GetDownIndex() const { return downIndex_; }
  int GetHighlightIndex() const { return highlightIndex_; }
  int GetDisabledIndex() const { return disabledIndex_; }
  bool GetStateButton() const { return stateButton_; }
  bool GetDown() const { return down_; }

  /// Not owned; the button follows the list's changes and forgets it when it is freed. The
  /// button's size becomes the list's.
  void SetImages(TImageList* images);
  void SetUpIndex(int index);
  void SetDownIndex(int index);
  void SetHighlightIndex(int index);
  void SetDisabledIndex(int index);
  /// False clears Down.
  void SetStateButton(bool stateButton);
  /// Four faces side by side in the list, from `first` on: up, highlight, down, disabled.
  void SetFaces(int first);
  void SetDown(bool down);

  /// Index of the face shown now; it may lie outside the list, which shows an empty face.
  int FaceIndex() const;
  /// The face shown now; empty if the list does not have it.
  const QPixmap& Picture() const { return picture_; }

  QSize sizeHint() const override;

 signals:
  /// The button was clicked; Down is already the new state.
  void OnClick(QObject* sender);

 protected:
  void nextCheckState() override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  template <class T>
  void Change(T& field, T value);
  void ChooseFace();

  QPointer<TImageList> images_;
  int upIndex_ = -1;
  int downIndex_ = -1;
  int highlightIndex_ = -1;
  int disabledIndex_ = -1;
  bool stateButton_ = false;
  bool down_ = false;
  bool pressed_ = false;
  bool mouseInside_ = false;
  QPixmap picture_;
};

#pragma once

#include <QUrl>

#include "components/controls/Textcontrol.h"

/// A text that opens a page, a file or a letter when it is clicked, or when Space or Enter is
/// pressed upon it. GUI thread only.
class THyperlink : public TCustomTextControl {
  Q_OBJECT
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
  Q_PROPERTY(QString URL READ GetURL WRITE SetURL)
  Q_PROPERTY(TAlignment Alignment READ GetAlignment WRITE SetAlignment)
  Q_PROPERTY(TTextLayout Layout READ GetLayout WRITE SetLayout)
  Q_PROPERTY(bool AutoSize READ GetAutoSize WRITE SetAutoSize)
  Q_PROPERTY(bool WordWrap READ GetWordWrap WRITE SetWordWrap)
  Q_PROPERTY(bool Underline READ GetUnderline WRITE SetUnderline)
  Q_PROPERTY(TColor FontColor READ GetFontColor WRITE SetFontColor)
  Q_PROPERTY(TColor HoverColor READ GetHoverColor WRITE SetHoverColor)
  Q_PROPERTY(TColor VisitedColor READ GetVisitedColor WRITE SetVisitedColor)
  Q_PROPERTY(TColor Color READ GetColor WRITE SetColor)
  Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)

 public:
  explicit THyperlink(QWidget* parent = nullptr);

  /// What is opened, as a user would type it: "example.org" and the name of a file will do.
  const QString& GetURL() const { return url_; }
  void SetURL(const QString& url);
  /// Whether the text is underlined when the mouse is not over it, too.
  bool GetUnderline() const { return underline_; }
  void SetUnderline(bool underline);
  /// Of the text under the mouse, and once it has been opened. None are the toolkit's colours, and
  /// under the mouse that of the text.
  TColor GetHoverColor() const { return hoverColor_; }
  void SetHoverColor(TColor color);
  TColor GetVisitedColor() const { return visitedColor_; }
  void SetVisitedColor(TColor color);

  bool IsVisited() const { return visited_; }

  /// What a click does: fires OnClick, then opens the target unless the form is being designed.
  void Click();

  /// Opens the target with the program that the system has for it. Only pages of the web, letters
  /// and files are opened; anything else, and a failure, is reported to the user.
  void Open();

  void AddWishes(TWishes& wishes) const override;

  /// The caption; without one the URL.
  QString Text() const override;

 signals:
  /// The link was clicked, or chosen by the keyboard; comes before the target is opened.
  void OnClick(QObject* sender);

 protected:
  TColor TextColor() const override;
  QFont TextFont() const override;
  void Paint(QPainter& painter) override;

  bool event(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QUrl Target() const;

  QString url_;
  bool underline_ = true;
  TColor hoverColor_ = TColor::FromRgb(200, 60, 20);
  TColor visitedColor_ = TColor::None();
  bool visited_ = false;
};

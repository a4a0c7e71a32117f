#pragma once

#include <QFont>
#include <QFontMetrics>
#include <QLine>
#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "components/graphing/Utilclasses.h"
#include "components/links/Propclasses.h"
#include "model/Color.h"
#include "model/Datetime.h"

class QPainter;
class TAxis;
class TTickLabel;
struct TTickChoice;
struct TTimeStep;

/// One set of ticks of an axis, major or minor. A member of its axis; GUI thread only.
class TTick : public TPersistent {
  Q_OBJECT

 public:
  enum TTickPos : int { tpNone, tpInside, tpCross, tpOutside };
  Q_ENUM(TTickPos)

 private:
  Q_PROPERTY(TAxis* Axis READ GetAxis STORED false)
  Q_PROPERTY(TTickPos Pos READ GetPos WRITE SetPos)
  Q_PROPERTY(int Size READ GetSize WRITE SetSize)

 public:
  static constexpr int kLargestSize = 1000;

  explicit TTick(TAxis* axis, int size = 4);

  TAxis* GetAxis() const { return axis_; }
  TTickPos GetPos() const { return pos_; }
  int GetSize() const { return size_; }
  void SetPos(TTickPos pos);
  void SetSize(int size);  ///< pixels; 0 to kLargestSize

  /// Value of the first and the last tick, and the number of intervals between them, at least 1.
  double Start() const { return start_; }
  double End() const { return end_; }
  int Count() const { return count_; }
  void SetRange(double start, double end, int count);
  /// Value of the tick `index`, 0 to Count().
  double Value(int index) const;

  /// Room for the ticks outside the plot rectangle.
  QMargins Overlap() const { return overlap_; }
  void CalculateOverlap();
  /// The line of one tick, from its inner to its outer end, relative to the axis line: both points
  /// are the last pixels that are painted.
  QLine Coordinate() const { return coordinate_; }
  void CalculateCoordinate();

  /// Draws the ticks at equal distances, and below each its label unless `label` is null.
  void DrawLinear(QPainter& painter, const TTickLabel* label) const;
  /// Draws nine ticks per decade.
  void DrawLog(QPainter& painter) const;

 private:
  void DrawTick(QPainter& painter, int position) const;
  QPoint LabelAnchor(int position) const;

  TAxis* axis_;  ///< the owner
  TTickPos pos_ = tpOutside;
  int size_;
  int count_ = 5;
  double start_ = 0.0;
  double end_ = 1.0;
  QMargins overlap_;
  QLine coordinate_;
};

/// The texts beside the major ticks of an axis. A member of its axis; GUI thread only.
class TTickLabel : public TPersistent {
  Q_OBJECT

 public:
  enum TLabelPos : int { lpNone, lpNextToAxis };
  Q_ENUM(TLabelPos)
  enum TLabelSpacing : int {
    lsAuto,   ///< a label at every major tick that has room for one
    lsMinMax  ///< labels only at the first and the last major tick
  };
  Q_ENUM(TLabelSpacing)

 private:
  Q_PROPERTY(TAxis* Axis READ GetAxis STORED false)
  Q_PROPERTY(QFont Font READ GetFont WRITE SetFont)
  Q_PROPERTY(TLabelPos Pos READ GetPos WRITE SetPos)
  Q_PROPERTY(TLabelSpacing Spacing READ GetSpacing WRITE SetSpacing)
  Q_PROPERTY(TNumberFormat* NumFormat READ GetNumFormat WRITE SetNumFormat)
  Q_PROPERTY(TColor FontColor READ GetFontColor WRITE SetFontColor)

 public:
  explicit TTickLabel(TAxis* axis);
  ~TTickLabel() override;

  TAxis* GetAxis() const { return axis_; }
  const QFont& GetFont() const { return font_; }
  TColor GetFontColor() const { return fontColor_; }
  TLabelPos GetPos() const { return pos_; }
  TLabelSpacing GetSpacing() const { return spacing_; }
  TNumberFormat* GetNumFormat() const { return numFormat_.get(); }
  void SetFont(const QFont& font);
  void SetFontColor(TColor color);
  void SetPos(TLabelPos pos);
  void SetSpacing(TLabelSpacing spacing);
  void SetNumFormat(const TNumberFormat* format);

  /// The label of a value. Where the labels of the ticks would be equal, they get the digits that
  /// tell the step between them, or more of the date and time.
  const QString& TextOf(double value) const { return Text(value).text; }

  /// Room for the texts beyond the ticks; nothing without major ticks.
  QMargins Overlap() const { return overlap_; }
  void CalculateOverlap();

  /// Draws the label of `value` at `anchor`, the point beyond the end of its tick, unless it would
  /// come too near to the previous one. `last` is where the previous label ends and moves on with
  /// each label that is drawn: the next one must start at or right of its x (horizontal axis), or
  /// end above its y (vertical axis). Returns whether the label was drawn.
  bool Draw(QPainter& painter, QPoint anchor, double value, QPoint& last) const;

 public slots:
  void PropertiesChanged();

 private:
  struct TText {
    double value;
    QString text;
    int width;  ///< pixels
  };
  const TText& Text(double value) const;
  void ChooseFormat() const;
  void TakeFormat() const;
  bool AreDistinct() const;
  void FollowStep() const;

  TAxis* axis_;  ///< the owner
  QMargins overlap_;
  QFont font_;
  QFont plotFont_;
  QFontMetrics metrics_;  ///< of plotFont_
  TColor fontColor_ = TColor::FromRgb(128, 128, 128);
  TLabelPos pos_ = lpNextToAxis;
  TLabelSpacing spacing_ = lsAuto;
  std::unique_ptr<TNumberFormat> numFormat_;

  /// numFormat_, with more digits where the ticks need them, and the ticks for which it was chosen.
  mutable TNumberFormat shownFormat_;
  mutable double chosenStart_ = 0.0;
  mutable double chosenEnd_ = 0.0;
  mutable int chosenCount_ = 0;  ///< 0: none yet

  /// Formatting and measuring a text costs far more than all the rest of a layout, and an axis asks
  /// for the same few texts again and again. Valid for the current font and format.
  mutable std::vector<TText> texts_;
  mutable std::size_t nextText_ = 0;  ///< where the next value asked for probably is
};

/// The caption along an axis. On a time axis it shows where the axis begins instead. A member of
/// its axis; GUI thread only.
class TAxisTitle : public TPersistent {
  Q_OBJECT

 public:
  /// Position along the axis; on a vertical axis left is the bottom end.
  enum TTitlePos : int { tiNone, tiLeft, tiCenter, tiRight };
  Q_ENUM(TTitlePos)

 private:
  Q_PROPERTY(TAxis* Axis READ GetAxis STORED false)
  Q_PROPERTY(QFont Font READ GetFont WRITE SetFont)
  Q_PROPERTY(TTitlePos Pos READ GetPos WRITE SetPos)
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
  Q_PROPERTY(TColor FontColor READ GetFontColor WRITE SetFontColor)

 public:
  explicit TAxisTitle(TAxis* axis);

  TAxis* GetAxis() const { return axis_; }
  const QFont& GetFont() const { return font_; }
  TColor GetFontColor() const { return fontColor_; }
  TTitlePos GetPos() const { return pos_; }
  const QString& GetCaption() const { return caption_; }
  const QString& GetTimeCaption() const { return timeCaption_; }
  void SetFont(const QFont& font);
  void SetFontColor(TColor color);
  void SetPos(TTitlePos pos);
  void SetCaption(const QString& caption);
  /// What a time axis shows; set by the axis whenever it chooses its ticks.
  void SetTimeCaption(const QString& caption);

  /// The text that is drawn: the time caption on a time axis, the caption otherwise; of a very long
  /// one its beginning.
  QString Text() const;

  QMargins Overlap() const { return overlap_; }
  void CalculateOverlap();
  void Draw(QPainter& painter) const;

 public slots:
  void PropertiesChanged();

 private:
  QString Shortened(int room) const;
  void DrawHorizontal(QPainter& painter, int distance) const;
  void DrawVertical(QPainter& painter, int distance) const;

  TAxis* axis_;  ///< the owner
  QMargins overlap_;
  QFont font_;
  QFont plotFont_;
  QFontMetrics metrics_;  ///< of plotFont_
  TColor fontColor_ = TColor::Blue();
  TTitlePos pos_ = tiCenter;
  QString caption_ = QStringLiteral("Title");
  QString timeCaption_;
};

/// One side of a plot: owns the value range shown along it, chooses round tick positions for the
/// range, maps values to pixels and draws line, ticks, labels and title. Pixels are the painter's
/// logical ones, so one drawing code serves screen, print and files. GUI thread only.
///
/// Any range is safe: what is not finite, out of order or too narrow to draw becomes a range near
/// it that can be drawn, as graphing/Tickrules says; the published Min and Max keep what was set.
class TAxis : public TPersistent {
  Q_OBJECT

 public:
  enum TAxisScale : int { asLinear, asLog, asTime };
  Q_ENUM(TAxisScale)
  enum TAxisOrientation : int { aoHorizontal, aoVertical };
  Q_ENUM(TAxisOrientation)
  /// The side of the plot rectangle on which the axis lies.
  enum TAxisAlign : int { alLeft, alTop, alRight, alBottom };
  Q_ENUM(TAxisAlign)
  enum TAxisShape : int {
    shLine,  ///< a line on the axis's side
    shFrame  ///< a frame around the whole plot rectangle
  };
  Q_ENUM(TAxisShape)

 private:
  Q_PROPERTY(TAxisTitle* Title READ GetTitle WRITE SetTitle)
  Q_PROPERTY(TTick* MajorTick READ GetMajorTick WRITE SetMajor)
  Q_PROPERTY(TTick* MinorTick READ GetMinorTick WRITE SetMinor)
  Q_PROPERTY(TTickLabel* Label READ GetLabel WRITE SetLabel)
  Q_PROPERTY(double Min READ GetMin WRITE SetMin)
  Q_PROPERTY(double Max READ GetMax WRITE SetMax)
  Q_PROPERTY(bool AutoMin READ GetAutoMin WRITE SetAutoMin)
  Q_PROPERTY(bool AutoMax READ GetAutoMax WRITE SetAutoMax)
  Q_PROPERTY(TColor LineColor READ GetLineColor WRITE SetLineColor)
  Q_PROPERTY(TAxisScale Scale READ GetScale WRITE SetScale)

 public:
  explicit TAxis(QObject* owner = nullptr);
  ~TAxis() override;

  TAxisTitle* GetTitle() const { return title_.get(); }
  TTick* GetMajorTick() const { return majorTick_.get(); }
  TTick* GetMinorTick() const { return minorTick_.get(); }
  TTickLabel* GetLabel() const { return label_.get(); }
  /// These copy the settings of their argument and keep nothing of it.
  void SetTitle(const TAxisTitle* title);
  void SetMajor(const TTick* tick);
  void SetMinor(const TTick* tick);
  void SetLabel(const TTickLabel* label);

  /// The range set by the user. A setter ignores what is not finite, and the value of the other
  /// bound, which keeps the range from collapsing; bounds that cross change places.
  double GetMin() const { return min_; }
  double GetMax() const { return max_; }
  void SetMin(double value);
  void SetMax(double value);
  void SetMinMax(double a, double b);

  /// An automatic bound is asked from OnQueryRange, the other is the user's.
  bool GetAutoMin() const { return autoMin_; }
  bool GetAutoMax() const { return autoMax_; }
  void SetAutoMin(bool on);
  void SetAutoMax(bool on);
  /// A bound that is no longer automatic stays where it is drawn.
  void HoldMin() { Hold(autoMin_); }
  void HoldMax() { Hold(autoMax_); }

  TColor GetLineColor() const { return lineColor_; }
  TAxisScale GetScale() const { return scale_; }
  TAxisAlign GetAlign() const { return align_; }
  TAxisOrientation GetOrientation() const { return orientation_; }
  TAxisShape GetShape() const { return shape_; }
  void SetLineColor(TColor color);  ///< of the line and the ticks; None() paints neither
  void SetScale(TAxisScale scale);
  void SetAlign(TAxisAlign align);
  void SetOrientation(TAxisOrientation orientation);
  void SetShape(TAxisShape shape);

  /// A fixed axis lies along the owner's plot rectangle as it is, and SetOrigin is ignored; the
  /// rectangle of a free one is that rectangle less the room for ticks, labels and title.
  bool GetFixedOrigin() const { return fixedOrigin_; }
  void SetFixedOrigin(bool fixed);
  QRect Origin() const { return origin_; }
  void SetOrigin(const QRect& rect);
  /// The area that titles may not leave, and labels not on the right, where they move left instead
  /// of being cut off. Empty: labels have no such limit, and a title has the length of the axis.
  void SetBounds(const QRect& bounds) { bounds_ = bounds; }
  QRect Bounds() const { return bounds_; }

  /// Gives the range of the data to an axis with automatic bounds. Both may always be written.
  std::function<void(double& minimum, double& maximum)> OnQueryRange;
  /// The owner's plot rectangle, for AdjustOrigin. An axis without it keeps its Origin.
  std::function<QRect()> OnQueryPlotRect;

  /// The range that is drawn; widened to whole tick steps.
  double WorkingMin() const { return workingMin_; }
  double WorkingMax() const { return workingMax_; }
  /// Pixels per value unit, per decade on a logarithmic axis.
  double ScaleFactor() const { return scaleFactor_; }
  /// The plot rectangle along which the axis lies; right and bottom are one past the last pixel.
  QRect ClientRect() const { return clientRect_; }
  /// Room for ticks, labels and title outside the plot rectangle.
  QMargins Overlap() const { return overlap_; }
  /// The strip beside the plot rectangle that holds ticks, labels and title: where the mouse means
  /// this axis.
  QRect GetClientRect() const;
  /// Room for the longer of the two tick sets alone, on the axis's own side.
  int TickRoom() const;
  /// Pixel of a value that lies in the working range, counted from its near end; the far end is
  /// counted from the other side, so that the last tick lands on the last pixel.
  double NearPixel(double value) const;
  double FarPixel(double value) const;
  /// Where a time axis begins.
  TDateTime TimeOrigin() const { return timeOrigin_; }
  /// Pattern in which the title of a time axis shows TimeOrigin; empty for steps of years.
  const QString& TimeCaptionPattern() const { return timeCaptionPattern_; }

  /// Asks for the automatic bounds and lays the axis out in its owner's plot rectangle.
  void UpdateAxis();
  void AutoScale();
  void AdjustOrigin();
  /// These make up a layout; an owner needs UpdateAxis only.
  void CalculateTickPos();
  void CalculateTimeTickPos();
  void ValidateRange();
  void CalculateScaleFactor();
  void CalculateOverlap();

  void Draw(QPainter& painter) const;

  void AssignTo(TPersistent* destination) const override;

 signals:
  /// The picture must be made anew. Follows each OnChange.
  void OnRepaint(QObject* sender);

 private:
  template <typename T>
  void Set(T& field, T value);
  void SubObjectChanged();
  template <class TChange>
  void Quietly(TChange change);
  void Notify();
  void TakeFixedBounds();
  void Hold(bool& automatic);
  void TakeTicks(const TTickChoice& ticks);
  QString TimeCaption(const TTimeStep& step) const;
  double Span(double from, double to) const;
  void DrawLine(QPainter& painter) const;

  QRect clientRect_;
  QMargins overlap_;
  QRect origin_;
  QRect bounds_;
  std::unique_ptr<TTick> minorTick_;
  std::unique_ptr<TTick> majorTick_;
  std::unique_ptr<TTickLabel> label_;
  std::unique_ptr<TAxisTitle> title_;
  TColor lineColor_ = TColor::FromRgb(128, 128, 128);
  double min_ = 0.0;
  double max_ = 1.0;
  double workingMin_ = 0.0;
  double workingMax_ = 1.0;
  double chosenForMin_ = 0.0;  ///< the range for which the present ticks were chosen
  double chosenForMax_ = 1.0;
  bool autoMin_ = true;
  bool autoMax_ = true;
  TAxisScale scale_ = asLinear;
  double scaleFactor_ = 1.0;
  TAxisAlign align_ = alBottom;
  TAxisOrientation orientation_ = aoHorizontal;
  TAxisShape shape_ = shFrame;
  bool fixedOrigin_ = false;
  TDateTime timeOrigin_;
  QString timeCaptionPattern_;
  bool choosingTicks_ = false;  ///< formats and captions set meanwhile are no changes
};

#pragma once

#include "components/controls/Colorlevels.h"
#include "components/controls/Textcontrol.h"
#include "components/graphing/Utilclasses.h"
#include "components/links/Compclasses.h"

/// A label whose colours and text follow a value: green below the first limit, amber from there,
/// red and "Alarm" from the next, or whatever its levels say. GUI thread only.
///
/// In the caption and in the text of a level "{value}" stands for the value with its units.
class TColorLabel : public TCustomTextControl {
  Q_OBJECT
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
  Q_PROPERTY(TInputData* Input READ GetInput WRITE SetInput)
  Q_PROPERTY(TColorLevels* Levels READ GetLevels WRITE SetLevels)
  Q_PROPERTY(TNumberFormat* Format READ GetFormat WRITE SetFormat)
  Q_PROPERTY(QString Units READ GetUnits WRITE SetUnits)
  Q_PROPERTY(TAlignment Alignment READ GetAlignment WRITE SetAlignment)
  Q_PROPERTY(TTextLayout Layout READ GetLayout WRITE SetLayout)
  Q_PROPERTY(bool AutoSize READ GetAutoSize WRITE SetAutoSize)
  Q_PROPERTY(bool WordWrap READ GetWordWrap WRITE SetWordWrap)
  Q_PROPERTY(double Angle READ GetAngle WRITE SetAngle)
  Q_PROPERTY(TColor FontColor READ GetFontColor WRITE SetFontColor)
  Q_PROPERTY(TColor Color READ GetColor WRITE SetColor)
  Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)

 public:
  explicit TColorLabel(QWidget* parent = nullptr);

  /// The control whose value is shown, or a value that was set by hand.
  TInputData* GetInput() { return &input_; }
  void SetInput(const TInputData* input) { input_.Assign(input); }
  /// Below the first limit Color, FontColor and Caption hold.
  TColorLevels* GetLevels() { return &levels_; }
  void SetLevels(const TColorLevels* levels) { levels_.Assign(levels); }
  TNumberFormat* GetFormat() { return &format_; }
  void SetFormat(const TNumberFormat* format) { format_.Assign(format); }
  const QString& GetUnits() const { return units_; }
  void SetUnits(const QString& units);

  /// Index of the level that the value is in; -1 for none.
  int Level() const { return level_; }

  QString Text() const override;
  void Loaded() override;

 signals:
  /// The value is in another level.
  void OnLevelChanged(QObject* sender);

 protected:
  TColor TextColor() const override;
  TColor BackColor() const override;

 private:
  void ValueChanged();
  void LevelsChanged();
  void FindLevel(int last);
  const TColorLevel* Present() const { return level_ < 0 ? nullptr : &levels_.Get(level_); }

  TInputData input_{this};
  TColorLevels levels_{this};
  TNumberFormat format_{this};
  QString units_;
  int level_ = -1;
  bool textIsOld_ = false;
};

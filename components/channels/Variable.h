#pragma once

#include "components/graphing/Utilclasses.h"
#include "components/links/Compclasses.h"

/// A server data control that shows its name and its present value as its caption.
class TCustomVariable : public TServerDataControl {
  Q_OBJECT

 public:
  explicit TCustomVariable(QWidget* parent = nullptr);

  void SetValue(double value) override;

  bool GetShowValue() const { return showValue_; }
  bool GetShowName() const { return showName_; }
  void SetShowValue(bool show);
  void SetShowName(bool show);
  /// The object name.
  void SetName(const QString& name) { setObjectName(name); }

  TNumberFormat* GetValueFormat() { return &valueFormat_; }
  /// Copies the format; null changes nothing.
  void SetFormat(const TNumberFormat* format) { valueFormat_.Assign(format); }

  /// "Name=value", or the one of the two that is to be shown, as of now. A form sees a new value at
  /// the latest when control returns to the event loop: a text for every value would cost more than
  /// everything else that is done with it.
  const QString& GetCaption() const override;
  using TServerDataControl::SetCaption;
  /// Makes the caption anew. With neither name nor value it is empty, and the icon is switched on,
  /// so that something is left to be seen.
  void SetCaption();

  void Loaded() override;

 protected:
  virtual QString ValueText() const { return valueFormat_.FormatedValue(GetValue()); }
  const TNumberFormat& ValueFormat() const { return valueFormat_; }

 private:
  void FormatChanged() { SetCaption(); }
  QString CaptionText() const;

  TNumberFormat valueFormat_{this};
  bool showValue_ = true;
  bool showName_ = true;
  bool captionIsOld_ = false;
};

/// The variable that is placed on forms.
class TVariable : public TCustomVariable {
  Q_OBJECT
  Q_PROPERTY(bool ShowValue READ GetShowValue WRITE SetShowValue)
  Q_PROPERTY(bool ShowName READ GetShowName WRITE SetShowName)
  Q_PROPERTY(TNumberFormat* ValueFormat READ GetValueFormat WRITE SetFormat)
  Q_PROPERTY(double Value READ GetValue WRITE SetValue)
  /// Made of the others, and so no form keeps it.
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption STORED false DESIGNABLE false)

 public:
  using TCustomVariable::TCustomVariable;
};

#pragma once

#include <QAbstractSpinBox>
#include <functional>
#include <optional>

#include "components/graphing/Utilclasses.h"
#include "components/links/Compclasses.h"

class QLabel;

/// A field for one number with its units. What is typed is checked while it is typed; Enter, or
/// leaving the field, takes it, Escape brings the value back. The arrow keys, the wheel and the
/// buttons step by Step, the page keys by ten times that. GUI thread only.
///
/// The value goes to the data control of Output when the user enters it or a program sets it. The
/// values of Input's are taken over, and shown when the user is not typing.
class TValueEdit : public QAbstractSpinBox {
  Q_OBJECT
  Q_PROPERTY(double Value READ GetValue WRITE SetValue)
  Q_PROPERTY(double Min READ GetMin WRITE SetMin)
  Q_PROPERTY(double Max READ GetMax WRITE SetMax)
  Q_PROPERTY(double Step READ GetStep WRITE SetStep)
  Q_PROPERTY(TNumberFormat* Format READ GetFormat WRITE SetFormat)
  Q_PROPERTY(QString Units READ GetUnits WRITE SetUnits)
  Q_PROPERTY(TInputData* Input READ GetInput WRITE SetInput)
  Q_PROPERTY(TOutputData* Output READ GetOutput WRITE SetOutput)

 public:
  explicit TValueEdit(QWidget* parent = nullptr);

  double GetValue() const { return value_; }
  /// Shows the value, gives it to Output and fires OnChange, if it is a new one. Not finite is
  /// ignored. The limits hold for the user only: a value outside is shown as a fault.
  void SetValue(double value);

  /// What the user may enter. There are no limits unless Min lies below Max. Not finite is ignored.
  double GetMin() const { return min_; }
  void SetMin(double min);
  double GetMax() const { return max_; }
  void SetMax(double max);
  /// Initially 1; only finite ones above 0 are taken.
  double GetStep() const { return step_; }
  void SetStep(double step);
  TNumberFormat* GetFormat() { return &format_; }
  void SetFormat(const TNumberFormat* format) { format_.Assign(format); }
  /// Shown behind the number; may be typed, too.
  const QString& GetUnits() const { return units_; }
  void SetUnits(const QString& units);

  TInputData* GetInput() { return &input_; }
  void SetInput(const TInputData* input) { input_.Assign(input); }
  TOutputData* GetOutput() { return &output_; }
  void SetOutput(const TOutputData* output) { output_.Assign(output); }

  /// Says whether the user may enter a value within the limits; unset allows all.
  std::function<bool(double value)> OnValidate;

  /// What is wrong with the text in the field, as the user reads it; empty if nothing is.
  const QString& Fault() const { return fault_; }

  void Loaded();

  void stepBy(int steps) override;
  QValidator::State validate(QString& text, int& position) const override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  /// The value is another one.
  void OnChange(QObject* sender);

 protected:
  StepEnabled stepEnabled() const override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  bool HasLimits() const { return min_ < max_; }
  bool IsTyping() const;
  QString EditText() const;
  QString Fitting(const QString& text) const;
  std::optional<double> Parse(const QString& text) const;
  QString FaultOf(std::optional<double> value) const;
  bool Commit();
  void ShowValue();
  void ShowFault(const QString& fault);
  void InputChanged();
  void LookChanged();
  int WidthFor(int digits) const;

  double value_ = 0.0;
  double shown_ = 0.0;  ///< the value, or one of Input that is none
  double min_ = 0.0;
  double max_ = 0.0;
  double step_ = 1.0;
  TNumberFormat format_{this};
  QString units_;
  TInputData input_{this};
  TOutputData output_{this};
  QLabel* unitsLabel_;  ///< in the field, which owns it
  QString fault_;
  bool showsLater_ = false;
};

#pragma once

#include <QPointer>
#include <vector>

#include "components/channels/Variable.h"
#include "components/sources/macro/Macrocompiler.h"
#include "components/sources/macro/Macroprogram.h"

/// A variable whose value is that of an expression over other variables. It is computed anew, from
/// the present values of all of them, whenever one of them notifies.
class TMacro : public TCustomVariable {
  Q_OBJECT
  Q_PROPERTY(TKorvalCompList* Variables READ GetVariables WRITE SetVariables)
  Q_PROPERTY(QString MacroText READ GetMacroText WRITE SetMacroText)
  Q_PROPERTY(bool ShowValue READ GetShowValue WRITE SetShowValue)
  Q_PROPERTY(bool ShowName READ GetShowName WRITE SetShowName)
  Q_PROPERTY(TNumberFormat* ValueFormat READ GetValueFormat WRITE SetFormat)
  Q_PROPERTY(double Value READ GetValue WRITE SetValue STORED false)
  /// Made of the others, and so no form keeps it.
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption STORED false DESIGNABLE false)

 public:
  explicit TMacro(QWidget* parent = nullptr);

  /// The variables that the text may name. The macro subscribes to those that it names.
  TKorvalCompList* GetVariables() { return &variables_; }
  /// Copies a list of variables; another list, and null, change nothing.
  void SetVariables(const TKorvalCompList* list);

  const QString& GetMacroText() const { return macroText_; }
  /// A new text is compiled at once, but not while the form is being read.
  void SetMacroText(const QString& text);

  /// Leaves the variables, compiles the text, subscribes to the variables that it names, each of
  /// which gives its value at once, and takes the value of the expression.
  void CompileMacro();
  /// The expression over the present values; 0 without one.
  double GetMacroValue();
  /// Takes the value of the expression, whatever `value` is.
  void SetValue(double value) override;

  /// What the last compilation found: "No errors", or what is wrong.
  const QString& GetErrorText() const { return errorText_; }
  TMacroCompiler::TErrorCode GetErrorCode() const { return compiler_.ErrorCode(); }
  /// See TMacroCompiler::Position.
  int GetErrorPosition() const { return compiler_.Position(); }

  /// What a double click does: edits the text, modally.
  void ShowEditor();

  void Loaded() override;

 protected:
  void DoubleClicked() override { ShowEditor(); }

 private:
  /// A variable that the expression reads.
  struct TInput {
    const QObject* component;  ///< for comparing only
    QPointer<const QObject> alive;
    const QMetaObject* whole;  ///< the class it has until its destruction begins

    bool IsWhole() const { return alive && alive->metaObject() == whole; }
  };

  void UnLinkVariables();
  [[nodiscard]] bool LinkVariables();
  void VariablesChanged(QObject* sender, QObject* component, TListAction action);
  void FindInputs();
  bool Reads(const QObject* component) const;

  TKorvalCompList variables_{this, &TVariable::staticMetaObject};
  QString macroText_;
  TMacroProgram program_;       ///< of the tree; empty without one
  std::vector<TInput> inputs_;  ///< of the program
  TMacroCompiler compiler_;
  QString errorText_ = TMacroCompiler::ErrorMessage(TMacroCompiler::mcOk);
  int compilations_ = 0;  ///< so many so far
  TValueLink link_{[this](double value) {
    const TRun::TPassing on;
    SetValue(value);
  }};
};

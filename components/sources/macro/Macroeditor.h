#pragma once

#include <QDialog>

#include "components/links/Complist.h"
#include "components/sources/macro/Macrocompiler.h"

class QDialogButtonBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPlainTextEdit;

/// Edits the text of a macro. It says at once what is wrong with the text and where; OK closes only
/// over a text without errors and otherwise puts the cursor where the compiler stood, Apply takes
/// any text. A double click on a variable or a function writes it. GUI thread only.
class TMacroEditor : public QDialog {
  Q_OBJECT

 public:
  /// The list of the variables is not owned and may go first.
  TMacroEditor(const QString& text, const TKorvalCompList& variables, QWidget* parent = nullptr);

  void Apply();
  void accept() override;

 signals:
  /// The text is to be taken.
  void OnApply(const QString& text);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QLayout* MakeText();
  QLayout* MakeLists();
  QDialogButtonBox* MakeButtons();
  void ListVariables();
  void ListFunctions();
  void Check();
  void Mark();
  int ErrorIndex() const;
  void GoToError();
  void Write(const QListWidgetItem& item);

  QPointer<const TKorvalCompList> list_;
  TMacroCompiler compiler_;
  QPlainTextEdit* text_;
  QLabel* error_;
  QLabel* value_;
  QListWidget* variables_;
  QListWidget* functions_;
};

#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>

#include "components/panels/Panel.h"
#include "components/panels/Wishbar.h"

class QVBoxLayout;

/// The window of a panel: the panel fills it, its menu saves the panel back. A panel that its user
/// has not allowed yet is shown at rest, under a bar that says what it wants. What would lose
/// settings, measurements or another program's changes asks first; where nobody can be asked,
/// because the program or the session is ended, settings are saved. GUI thread only.
class TPanelWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// `trusted`: it starts without a question.
  explicit TPanelWindow(std::unique_ptr<TPanel> panel, bool trusted = false);
  ~TPanelWindow() override;

  const TPanel& Panel() const { return *panel_; }

  enum class TAnswer { Save, Discard, Overwrite, Reload, SaveAs, Cancel };
  /// Gives one of the answers. Unset: a message box.
  std::function<TAnswer(const QString& question, const QList<TAnswer>& answers)> Ask;
  /// A name to save under, empty for none. Unset: a file dialog.
  std::function<QString()> AskFileName;

 public slots:
  void Save();
  void SaveAs();
  /// Reads the file again, in place of the present panel. A file that cannot be read leaves that.
  void Reload();
  /// Shows the components that have no face of their own, as while a form is designed.
  void ShowComponents(bool show);
  /// Shows what a panel at rest wants.
  void ShowWishes();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void Show(std::unique_ptr<TPanel> panel);
  void StartOrAsk();
  void Start();
  void TakeAnswer(TWishBar::TAnswer answer);
  void RemoveBar();
  void ShowTitle();
  TAnswer AskUser(const QString& question, const QList<TAnswer>& answers);
  bool SaveTo(const QString& fileName);
  bool SaveUnderNewName();
  void Read();
  void Keep();

  std::unique_ptr<TPanel> panel_;
  const bool trusted_;
  TPanelMark started_;  ///< what the user has let start in this window
  QString settings_;    ///< as they are in the file
  QString state_;       ///< settings and measurements, as they are in the file
  QVBoxLayout* column_;
  TWishBar* bar_ = nullptr;  ///< null: nothing is asked
  QAction* showWishes_;
  QAction* showComponents_;
};

/// Opens a panel and says what is wrong with its file. Null, after the message, if it is no form
/// file.
std::unique_ptr<TPanel> OpenPanel(const QString& fileName, bool trusted = false);

/// What to do with a panel that is run without showing it on a screen.
struct TPanelRun {
  double Seconds = 0.0;     ///< how long it runs first
  QString PictureFile;      ///< empty: no picture
  QString SaveFile;         ///< empty: not saved
  QSize Size;               ///< of the picture, logical pixels; invalid: the size that the form has
  bool IsTrusted = false;   ///< it starts, whatever it wants
  bool Overwrites = false;  ///< it is saved though another program has changed the file
};

/// False, after a message, if something of it cannot be done, the file has faults, or the panel
/// wants something that its user has not allowed.
bool RunPanel(const QString& fileName, const TPanelRun& run);

#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>

#include "components/package/Panel.h"

/// The window of a panel: the panel fills it, its menu saves the panel back. Closing it asks what
/// to do about settings that have been changed and not saved; where nobody can be asked, because
/// the program or the session is ended, they are saved. GUI thread only.
class TPanelWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit TPanelWindow(std::unique_ptr<TPanel> panel);
  ~TPanelWindow() override;

  const TPanel& Panel() const { return *panel_; }

  enum class TAnswer { Save, Discard, Cancel };
  /// Unset: a message box.
  std::function<TAnswer(const QString& question)> AskToSave;

 public slots:
  void Save();
  void SaveAs();
  /// Reads the file again, in place of the present panel. A file that cannot be read leaves that.
  void Reload();
  /// Shows the components that have no face of their own, as while a form is designed.
  void ShowComponents(bool show);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void Show(std::unique_ptr<TPanel> panel);
  bool SaveTo(const QString& fileName);
  void Keep();

  std::unique_ptr<TPanel> panel_;
  QString settings_;  ///< as they are in the file
  QAction* showComponents_;
};

/// Opens a panel and says what is wrong with its file. Null, after the message, if it is no form
/// file.
std::unique_ptr<TPanel> OpenPanel(const QString& fileName);

/// What to do with a panel that is run without showing it on a screen.
struct TPanelRun {
  double Seconds = 0.0;  ///< how long it runs first
  QString PictureFile;   ///< empty: no picture
  QString SaveFile;      ///< empty: not saved
  QSize Size;            ///< of the picture, logical pixels; invalid: the size that the form has
};

/// False, after a message, if something of it cannot be done or the file has faults.
bool RunPanel(const QString& fileName, const TPanelRun& run);

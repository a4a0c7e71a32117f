#pragma once

#include <QMainWindow>
#include <memory>

#include "components/package/Panel.h"

/// The window of a panel: the panel fills it, its menu saves the panel back. GUI thread only.
class TPanelWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit TPanelWindow(std::unique_ptr<TPanel> panel);
  ~TPanelWindow() override;

  const TPanel& Panel() const { return *panel_; }

 public slots:
  void Save();
  void SaveAs();
  /// Reads the file again, in place of the present panel. A file that cannot be read leaves that.
  void Reload();
  /// Shows the components that have no face of their own, as while a form is designed.
  void ShowComponents(bool show);

 private:
  void Show(std::unique_ptr<TPanel> panel);
  void SaveTo(const QString& fileName);

  std::unique_ptr<TPanel> panel_;
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
  QSize Size;            ///< of the picture, pixels; invalid: the size that the form has
};

/// False, after a message, if something of it cannot be done or the file has faults.
bool RunPanel(const QString& fileName, const TPanelRun& run);

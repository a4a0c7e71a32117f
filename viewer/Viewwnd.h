#pragma once

#include <QColor>
#include <QElapsedTimer>
#include <QMainWindow>
#include <functional>

#include "exchange/Openjob.h"
#include "model/Animation.h"
#include "model/Filekind.h"
#include "model/Timer.h"
#include "viewer/Modellist.h"
#include "viewer/opengl/Picture.h"
#include "viewer/window/Settings.h"
#include "viewer/window/Viewform.h"
#include "viewer/window/Viewhistory.h"
#include "viewer/window/Viewstate.h"
#include "viewer/window/Windowplace.h"

/// The questions that the main window asks. An empty or invalid answer means cancelled.
struct TViewDialogs {
  /// `start`: the file or folder to begin with, perhaps empty.
  using TAskFile = std::function<QString(QWidget* parent, const QString& start)>;
  using TAskColor = std::function<QColor(QWidget* parent, const QColor& present)>;

  TViewDialogs();  ///< the system's dialogs

  using TAskFiles = std::function<QStringList(QWidget* parent, const QString& start)>;

  TAskFiles Files;  ///< of any kind
  TAskFile ModelFile;
  TAskFile DataFile;
  TAskFile JobFile;  ///< where to save model and data; the suffix is the format
  /// Whether a file that is written along may be replaced.
  std::function<bool(QWidget* parent, const QString& fileName)> Overwrite;
  TAskFile PictureFile;  ///< where to save
  TAskColor Color;
  int LoadDelayMs = 500;  ///< before a load shows its progress
};

/// The program's main window: shows the model in the panel P, animates it with the data sets of the
/// legend, and offers the commands of the menus and the button bar. Owns the model, the animation
/// and the legend, which owns the data. GUI thread only.
class TViewWnd : public QMainWindow {
  Q_OBJECT

 public:
  /// Applies the settings, which may load a model and data. `settingsFile` is where they are saved
  /// when the window is destroyed or the session ends, if "Save options on exit" is checked.
  /// `files`, if there are any, are opened in place of those that the settings name.
  TViewWnd(const QString& settingsFile, const TSettings& settings, const QStringList& files = {});
  explicit TViewWnd(const QString& settingsFile)
      : TViewWnd(settingsFile, LoadSettings(settingsFile)) {}
  ~TViewWnd() override;

  /// Reads a model file and unloads the data; another model than before is shown without its pan.
  /// A file that cannot be read, or is no model file, or a cancel, leaves everything as it was and
  /// gives false. What was dropped is shown to the user.
  bool OpenModel(const QString& fileName);
  /// Replaces the data by those of a file, likewise.
  void OpenData(const QString& fileName);
  /// Opens whatever the program reads, distinguished by its content: a model file, a data file or
  /// one of each; files of a laboratory, all of which make one model; panels.
  void OpenFiles(const QStringList& fileNames);

  const QString& ModelFile() const { return modelFile_; }  ///< empty if no model is loaded
  const QString& DataFile() const { return dataFile_; }    ///< empty if no data are loaded
  const TModel& Model() const { return model_; }
  const TAnimation& Animation() const { return animation_; }
  const TTimerClient& AnimationTimer() const { return timer_; }
  const TAppearance& Appearance() const { return appearance_; }
  TModelListWnd& Legend() { return *legend_; }

  /// What would be saved now.
  TSettings CurrentSettings() const;

  TViewDialogs Dialogs;
  /// Shows a panel in a window of its own. Unset: panels cannot be opened.
  std::function<void(const QString& fileName)> OpenForm;

 public slots:
  void OpenAnyFiles();
  void SaveJobAs();
  void ShowReport();
  void MoveUnmeasured();
  void LoadModelFile();
  void LoadDataFile();
  /// `sender`: the menu item "Unload Model", which takes the data along, or "Unload Data".
  void ClearModels(QObject* sender);
  void SaveBitmap();
  void ExitMenuClick();
  void CopyToClipboard();
  /// `sender`: the menu item of the colour to be chosen.
  void SetColors(QObject* sender);
  void ChangeNodeShape();
  void ShowModelClick();
  void ShowHideMLW();
  void AboutMenuClick();

  /// Zoom and pan at which all that is shown fills the picture.
  void Fit();
  void UndoView();
  void RedoView();
  /// No bars and the whole screen, or back.
  void ShowFullPicture();
  /// `sender`: the button of the view.
  void SetView(QObject* sender);
  /// One frame, back if the sender is the back button.
  void AnimateModel(QObject* sender);
  void AnimClick();
  void SetSpeed();
  void SetViewScale();
  /// `button`: the scale button that was pressed; without one the buttons follow the scale type.
  void SetScaleType(QObject* button = nullptr);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void ConnectMenus();
  void ConnectButtons();
  void ConnectView();

  void GLPanelInit();
  void GLPanelPaint();

  void KeepSettings() const;
  void ApplySettings(const TSettings& settings);
  void OpenFirstFiles(const QStringList& files);
  bool OpenJobFiles(const QStringList& fileNames, TWanted wanted = TWanted::Everything);
  void TakeJob(const TOpenedJob& job);
  void TellFindings(const TFindings& findings);
  void ForgetFindings();
  void ApplyBounds(const TSettings& settings);

  TLoadReport Read(TFileKind kind, const QString& fileName,
                   const std::function<TLoadReport(std::string_view, const TLoadProgress&)>& load);
  void UnloadData();
  void ResetPan();
  void BeginView();
  void NoteView();
  void FitView();
  void UpdateAppearance();
  void UpdateScale();
  void UpdateCaption();
  void UpdateShown();
  void UpdateFrameText();

  TViewForm form_;
  TModelListWnd* legend_;  ///< a child of this window
  TModel model_;
  TAnimation animation_;
  TTimerClient timer_;
  TPicture picture_;
  TViewHistory views_;
  QElapsedTimer viewClock_;
  TAppearance appearance_;
  QString settingsFile_;
  QString modelFile_;
  QString dataFile_;
  QStringList moreModelFiles_;  ///< the others of the same job that gave geometry
  QStringList moreDataFiles_;   ///< and those that gave shapes alone
  TMatrixReading matrices_ = TMatrixReading::RowsAreAxes;
  QString report_;  ///< what was found in the files of the last job
  /// What the settings named and could not be loaded, as long as nothing else was loaded or
  /// unloaded: it is saved again.
  struct {
    QString modelFile, dataFile, checkedLabels;
    QStringList moreFiles = {};
  } absent_;
  TWindowPlace place_{this};
  TWindowPlace legendPlace_;
  QString savePath_;      ///< folder of the last saved bitmap
  bool reading_ = false;  ///< a load is on its way: nothing else may touch model or data
};

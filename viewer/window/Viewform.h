#pragma once

class QAction;
class QLabel;
class QMainWindow;
class QSlider;
class QToolBar;
class QToolButton;
class TGLPanel;
class TImageButton;

/// Everything that stands on the main window: its menus, its button bar, the panel and the status
/// bar. All of it belongs to the window; what it does is the window's business.
struct TViewForm {
  explicit TViewForm(QMainWindow& window);

  // Menus
  QAction* OpenMenu;
  QAction* LoadModelMenu;
  QAction* LoadDataMenu;
  QAction* UnloadModelMenu;
  QAction* UnloadDataMenu;
  QAction* SaveJobMenu;
  QAction* SaveBitmapMenu;
  QAction* ExitMenu;
  QAction* CopyMenu;
  QAction* FitMenu;
  QAction* UndoViewMenu;
  QAction* RedoViewMenu;
  QAction* FullPictureMenu;
  QAction* BackgroundMenu;
  QAction* FontMenu;
  QAction* ElementsMenu;
  QAction* NodesMenu;
  QAction* SphereMenu;
  QAction* CubeMenu;
  QAction* RestMenu;  ///< unmeasured nodes
  QAction* FollowMenu;
  QAction* ShowModelMenu;
  QAction* ShowLegendMenu;
  QAction* CanSaveMenu;
  QAction* AboutMenu;

  QToolBar* ButtonBar;
  TImageButton* ViewX;
  TImageButton* ViewY;
  TImageButton* ViewZ;
  TImageButton* View3D;
  TImageButton* View1_1;
  TImageButton* AnimBack;
  TImageButton* Anim;
  TImageButton* AnimForward;
  TImageButton* AbsolScale;
  TImageButton* RelatScale;
  TImageButton* SumScale;
  QSlider* Speed;  ///< further right is faster
  QSlider* ScaleBar;

  TGLPanel* P;

  // Status bar
  QLabel* ShownLabel;
  QLabel* FrameLabel;
  QLabel* CountLabel;
  QToolButton* JobButton;  ///< what the files held, in place of CountLabel; a click tells all

 private:
  void MakeFileMenu(QMainWindow& window);
  void MakeViewMenu(QMainWindow& window);
  void MakeOptionsMenu(QMainWindow& window);
  void MakeButtons(QMainWindow& window);
  void MakeStatusBar(QMainWindow& window);
};

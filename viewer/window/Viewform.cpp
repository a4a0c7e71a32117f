#include "viewer/window/Viewform.h"

#include <QActionGroup>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QPainter>
#include <QShortcut>
#include <QSlider>
#include <QStatusBar>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolBar>
#include <QToolButton>

#include "viewer/Glpanel.h"
#include "viewer/Imagebutton.h"
#include "viewer/window/Buttonfaces.h"
#include "viewer/window/Viewstate.h"

namespace {

QAction* AddItem(QMenu* menu, const char* name, const QString& caption,
                 const QKeySequence& shortcut = {}) {
  QAction* item = menu->addAction(caption);
  item->setObjectName(QLatin1String(name));
  item->setShortcut(shortcut);
  return item;
}

QAction* AddCheck(QMenu* menu, const char* name, const QString& caption, bool checked,
                  const QKeySequence& shortcut = {}) {
  QAction* item = AddItem(menu, name, caption, shortcut);
  item->setCheckable(true);
  item->setChecked(checked);
  return item;
}

void MakeExclusive(QAction* one, QAction* other) {
  auto* group = new QActionGroup(one->parent());
  group->addAction(one);
  group->addAction(other);
}

/// A button of the bar that a key clicks too.
TImageButton* AddButton(QToolBar* bar, TImageList* faces, TButtonFace face, const char* name,
                        const QString& tip, const QKeySequence& key) {
  auto* button = new TImageButton(bar);
  button->setObjectName(QLatin1String(name));
  button->SetImages(faces);
  button->SetFaces(face);
  button->setAccessibleName(tip);
  button->setToolTip(QStringLiteral("%1 (%2)").arg(tip, key.toString(QKeySequence::NativeText)));
  bar->addWidget(button);
  auto* shortcut = new QShortcut(key, bar->window());
  QObject::connect(shortcut, &QShortcut::activated, button, &QAbstractButton::click);
  return button;
}

/// A slider that keeps Left and Right, which step the animation, from the window while it has the
/// keyboard.
class TBar : public QSlider {
 public:
  using QSlider::QSlider;

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::ShortcutOverride) return QSlider::event(event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    event->setAccepted(key == Qt::Key_Left || key == Qt::Key_Right);
    return event->isAccepted();
  }
};

QSlider* AddSlider(QWidget* box, int row, const QString& label, const char* name,
                   const QString& tip) {
  constexpr int kWidth = 130;
  auto* slider = new TBar(Qt::Horizontal, box);
  slider->setObjectName(QLatin1String(name));
  slider->setToolTip(tip);
  slider->setAccessibleName(tip);
  slider->setFixedWidth(kWidth);
  auto* layout = static_cast<QGridLayout*>(box->layout());
  layout->addWidget(new QLabel(label, box), row, 0);
  layout->addWidget(slider, row, 1);
  return slider;
}

/// A line of text that ends in dots where it does not fit.
class TElidedLabel : public QLabel {
 public:
  using QLabel::QLabel;
  QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    const QRect room = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
    QPainter(this).drawText(room, Qt::AlignLeft | Qt::AlignVCenter, shown);
  }
};

/// A flat button whose text ends in dots where it does not fit.
class TLineButton : public QToolButton {
 public:
  using QToolButton::QToolButton;
  QSize minimumSizeHint() const override { return {0, QToolButton::minimumSizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    const int room = width() - 2 * style()->pixelMetric(QStyle::PM_ButtonMargin, &option, this);
    option.text = fontMetrics().elidedText(text(), Qt::ElideRight, room);
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
  }
};

QLabel* AddLabel(QStatusBar* bar, const char* name, int stretch) {
  auto* label = new TElidedLabel(bar);
  label->setObjectName(QLatin1String(name));
  // New text never changes the layout, so a frame costs no more than its words.
  label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  label->setContentsMargins(6, 0, 6, 0);
  bar->addWidget(label, stretch);
  return label;
}

}  // namespace

TViewForm::TViewForm(QMainWindow& window) {
  MakeFileMenu(window);
  MakeViewMenu(window);
  MakeOptionsMenu(window);
  QMenu* help = window.menuBar()->addMenu(QStringLiteral("Help"));
  AboutMenu = AddItem(help, "AboutMenu", QStringLiteral("About..."), QKeySequence::HelpContents);
  MakeButtons(window);
  P = new TGLPanel(&window);
  P->setObjectName(QStringLiteral("P"));
  window.setCentralWidget(P);
  MakeStatusBar(window);
  // Their keys are to work while the menu bar is hidden.
  for (const QMenu* menu : window.menuBar()->findChildren<QMenu*>()) {
    window.addActions(menu->actions());
  }
}

void TViewForm::MakeFileMenu(QMainWindow& window) {
  QMenu* file = window.menuBar()->addMenu(QStringLiteral("File"));
  OpenMenu = AddItem(file, "OpenMenu", QStringLiteral("&Open..."),
                     QKeySequence(QStringLiteral("Ctrl+Shift+O")));
  file->addSeparator();
  LoadModelMenu = AddItem(file, "LoadModelMenu", QStringLiteral("Load &Model..."),
                          QKeySequence(QStringLiteral("Ctrl+O")));
  LoadDataMenu = AddItem(file, "LoadDataMenu", QStringLiteral("Load Data..."),
                         QKeySequence(QStringLiteral("Ctrl+D")));
  file->addSeparator();
  UnloadModelMenu = AddItem(file, "UnloadModelMenu", QStringLiteral("Unload Model"));
  UnloadDataMenu = AddItem(file, "UnloadDataMenu", QStringLiteral("Unload Data"));
  file->addSeparator();
  SaveJobMenu = AddItem(file, "SaveJobMenu", QStringLiteral("Save Model and Data As..."),
                        QKeySequence(QStringLiteral("Ctrl+Shift+S")));
  SaveBitmapMenu = AddItem(file, "SaveBitmapMenu", QStringLiteral("Save &As Bitmap..."),
                           QKeySequence(QStringLiteral("Ctrl+S")));
  file->addSeparator();
  ExitMenu =
      AddItem(file, "ExitMenu", QStringLiteral("Exit"), QKeySequence(QStringLiteral("Ctrl+Q")));

  QMenu* edit = window.menuBar()->addMenu(QStringLiteral("Edit"));
  CopyMenu =
      AddItem(edit, "CopyMenu", QStringLiteral("Copy"), QKeySequence(QStringLiteral("Ctrl+C")));
}

void TViewForm::MakeViewMenu(QMainWindow& window) {
  QMenu* view = window.menuBar()->addMenu(QStringLiteral("View"));
  FitMenu = AddItem(view, "FitMenu", QStringLiteral("Fit"), QKeySequence(Qt::Key_F));
  UndoViewMenu = AddItem(view, "UndoViewMenu", QStringLiteral("Undo view"),
                         QKeySequence(QStringLiteral("Alt+Left")));
  RedoViewMenu = AddItem(view, "RedoViewMenu", QStringLiteral("Redo view"),
                         QKeySequence(QStringLiteral("Alt+Right")));
  view->addSeparator();
  FullPictureMenu = AddCheck(view, "FullPictureMenu", QStringLiteral("Full picture"), false,
                             QKeySequence(Qt::Key_F11));
}

void TViewForm::MakeOptionsMenu(QMainWindow& window) {
  QMenu* options = window.menuBar()->addMenu(QStringLiteral("Options"));
  QMenu* colors = options->addMenu(QStringLiteral("Colors"));
  BackgroundMenu = AddItem(colors, "BackgroundMenu", QStringLiteral("Background..."));
  FontMenu = AddItem(colors, "FontMenu", QStringLiteral("Font..."));
  ElementsMenu = AddItem(colors, "ElementsMenu", QStringLiteral("Elements..."));
  NodesMenu = AddItem(colors, "NodesMenu", QStringLiteral("Nodes..."));

  QMenu* shapes = options->addMenu(QStringLiteral("Node Shapes"));
  SphereMenu = AddCheck(shapes, "SphereMenu", QStringLiteral("Sphere"), true);
  CubeMenu = AddCheck(shapes, "CubeMenu", QStringLiteral("Cube"), false);
  MakeExclusive(SphereMenu, CubeMenu);

  QMenu* unmeasured = options->addMenu(QStringLiteral("Unmeasured nodes"));
  RestMenu = AddCheck(unmeasured, "RestMenu", QStringLiteral("Stay at rest"), true);
  FollowMenu = AddCheck(unmeasured, "FollowMenu", QStringLiteral("Follow their neighbours"), false);
  MakeExclusive(RestMenu, FollowMenu);

  options->addSeparator();
  ShowModelMenu = AddCheck(options, "ShowModelMenu", QStringLiteral("Show Model"), true,
                           QKeySequence(Qt::Key_M));
  ShowLegendMenu = AddCheck(options, "ShowLegendMenu", QStringLiteral("Show Legend"), false,
                            QKeySequence(Qt::Key_L));
  CanSaveMenu = AddCheck(options, "CanSaveMenu", QStringLiteral("Save options on exit"), true);
}

void TViewForm::MakeButtons(QMainWindow& window) {
  QToolBar* bar = ButtonBar = window.addToolBar(QStringLiteral("Buttons"));
  bar->setObjectName(QStringLiteral("ButtonBar"));
  bar->setMovable(false);
  // In a narrow window the bar opens over the panel, whose surface is a window of the system and
  // would cover anything less.
  bar->setAttribute(Qt::WA_DontCreateNativeAncestors);
  bar->setAttribute(Qt::WA_NativeWindow);
  window.setContextMenuPolicy(Qt::NoContextMenu);  // the bar cannot be hidden
  TImageList* faces = MakeButtonFaces(&window);
  window.setWindowIcon(faces->Image(bfView3D, 2.0));
  const auto add = [&](TButtonFace face, const char* name, const QString& tip, Qt::Key key) {
    return AddButton(bar, faces, face, name, tip, QKeySequence(key));
  };

  ViewX = add(bfViewX, "ViewX", QStringLiteral("View along X"), Qt::Key_X);
  ViewY = add(bfViewY, "ViewY", QStringLiteral("View along Y"), Qt::Key_Y);
  ViewZ = add(bfViewZ, "ViewZ", QStringLiteral("View along Z"), Qt::Key_Z);
  View3D = add(bfView3D, "View3D", QStringLiteral("Oblique view"), Qt::Key_3);
  View1_1 = add(bfView1_1, "View1_1", QStringLiteral("Zoom 1:1"), Qt::Key_1);
  bar->addSeparator();
  AnimBack = add(bfAnimBack, "AnimBack", QStringLiteral("One frame back"), Qt::Key_Left);
  Anim = add(bfAnim, "Anim", QStringLiteral("Animation on or off"), Qt::Key_Space);
  AnimForward = add(bfAnimForward, "AnimForward", QStringLiteral("One frame on"), Qt::Key_Right);
  bar->addSeparator();
  AbsolScale = add(bfAbsolScale, "AbsolScale",
                   QStringLiteral("Absolute: all data sets to one scale"), Qt::Key_A);
  RelatScale = add(bfRelatScale, "RelatScale",
                   QStringLiteral("Relative: every data set at the same size"), Qt::Key_R);
  SumScale =
      add(bfSumScale, "SumScale", QStringLiteral("Sum: all data sets together in time"), Qt::Key_S);
  bar->addSeparator();
  for (TImageButton* button : {Anim, AbsolScale, RelatScale, SumScale}) {
    button->SetStateButton(true);
  }
  AbsolScale->SetDown(true);

  auto* bars = new QWidget(bar);
  auto* layout = new QGridLayout(bars);
  layout->setContentsMargins(6, 0, 6, 0);
  layout->setHorizontalSpacing(3);
  layout->setVerticalSpacing(2);
  Speed = AddSlider(bars, 0, QStringLiteral("Speed :"), "Speed", QStringLiteral("Animation speed"));
  Speed->setRange(10, 150);
  Speed->setValue(50);
  ScaleBar = AddSlider(bars, 1, QStringLiteral("Scale :"), "ScaleBar",
                       QStringLiteral("Size of the displacements"));
  ScaleBar->setRange(kScaleBarMin, kScaleBarMax);
  ScaleBar->setValue(kScaleBarStart);
  ScaleBar->setPageStep(1);
  bars->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
  bar->addWidget(bars);
}

void TViewForm::MakeStatusBar(QMainWindow& window) {
  QStatusBar* bar = window.statusBar();
  ShownLabel = AddLabel(bar, "ShownLabel", 3);
  FrameLabel = AddLabel(bar, "FrameLabel", 2);
  CountLabel = AddLabel(bar, "CountLabel", 2);
  JobButton = new TLineButton(bar);
  JobButton->setObjectName(QStringLiteral("JobButton"));
  JobButton->setAutoRaise(true);
  JobButton->setFocusPolicy(Qt::NoFocus);  // the keys stay with the window
  JobButton->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  bar->addWidget(JobButton, 4);
  JobButton->hide();
}

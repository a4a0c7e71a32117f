#include "viewer/Viewwnd.h"

#include <QApplication>
#include <QCloseEvent>
#include <QColorDialog>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QScreen>
#include <QSlider>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <utility>

#include "exchange/Savejob.h"
#include "model/Ending.h"
#include "model/Message.h"
#include "model/Oneline.h"
#include "viewer/Animatorabout.h"
#include "viewer/Glpanel.h"
#include "viewer/Imagebutton.h"
#include "viewer/scene/Fitting.h"
#include "viewer/scene/Frametext.h"
#include "viewer/window/Loaddialog.h"
#include "viewer/window/Reportdialog.h"
#include "viewer/window/Savepicture.h"

namespace {

constexpr QSize kFirstSize(1100, 760);
constexpr QSize kMinSize(400, 300);
constexpr QPoint kLegendOffset(-24, 120);  ///< its first place: in the picture's right top corner
constexpr quint32 kFirstInterval = 6;      ///< ticks of 10 ms

QString FolderOf(const QString& path) {
  return path.isEmpty() ? QString() : QFileInfo(path).absolutePath();
}

QStringList Absolute(QStringList paths) {
  for (QString& path : paths) path = QFileInfo(path).absoluteFilePath();
  paths.removeDuplicates();
  return paths;
}

QString IfItExists(const QString& path) { return QFileInfo::exists(path) ? path : QString(); }

QStringList LocalFiles(const QMimeData* data) {
  QStringList files;
  for (const QUrl& url : data->urls()) {
    if (url.isLocalFile()) files << url.toLocalFile();
  }
  return files;
}

TViewDialogs::TAskFile AskFileToOpen(const QString& caption, const QString& filter) {
  return [=](QWidget* parent, const QString& start) {
    return QFileDialog::getOpenFileName(parent, caption, start, filter);
  };
}

/// A filter, and the suffix that a name without one gets.
using TFileKinds = QList<std::pair<QString, QString>>;

TViewDialogs::TAskFile AskFileToSave(const QString& caption, const TFileKinds& kinds) {
  return [=](QWidget* parent, const QString& start) {
    QFileDialog dialog(parent, caption, start);
    QStringList filters;
    for (const auto& kind : kinds) filters << kind.first;
    dialog.setNameFilters(filters);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const auto choose = [&](const QString& filter) {
      dialog.setDefaultSuffix(kinds.value(filters.indexOf(filter)).second);
    };
    choose(filters.front());
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, choose);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
  };
}

bool AskOverwrite(QWidget* parent, const QString& fileName) {
  QMessageBox box(QMessageBox::Question, QLatin1String(kProgramTitle),
                  QObject::tr("%1 is there already. Overwrite it?").arg(ShownFileName(fileName)),
                  QMessageBox::Yes | QMessageBox::Cancel, parent);
  box.setTextFormat(Qt::PlainText);
  return box.exec() == QMessageBox::Yes;
}

}  // namespace

TViewDialogs::TViewDialogs()
    : Files([](QWidget* parent, const QString& start) {
        return QFileDialog::getOpenFileNames(
            parent, QObject::tr("Open"), start,
            QObject::tr("All that can be read (*.mod *.dat *.unv *.uff *.csv *.txt *.ui);;"
                        "Universal files (*.unv *.uff);;Tables (*.csv *.txt);;All files (*)"));
      }),
      ModelFile(AskFileToOpen(
          QObject::tr("Load Model"),
          QObject::tr("Model files (*.mod);;Universal files (*.unv *.uff);;All files (*)"))),
      DataFile(AskFileToOpen(
          QObject::tr("Load Data"),
          QObject::tr("Data files (*.dat);;Universal files (*.unv *.uff);;All files (*)"))),
      JobFile(AskFileToSave(QObject::tr("Save Model and Data As"),
                            {{QObject::tr("Model and data (*.mod)"), "mod"},
                             {QObject::tr("Universal file (*.unv *.uff)"), "unv"}})),
      Overwrite(AskOverwrite),
      PictureFile(AskFileToSave(QObject::tr("Save As Bitmap"),
                                {{QObject::tr("Bitmaps (*.bmp)"), "bmp"},
                                 {QObject::tr("PNG pictures (*.png)"), "png"},
                                 {QObject::tr("All files (*)"), "bmp"}})),
      Color([](QWidget* parent, const QColor& present) {
        return QColorDialog::getColor(present, parent);
      }) {}

TViewWnd::TViewWnd(const QString& settingsFile, const TSettings& settings, const QStringList& files)
    : form_(*this),
      legend_(new TModelListWnd(this)),
      settingsFile_(settingsFile),
      absent_{settings.ModelFile, settings.DataFile, settings.CheckedLabels, settings.MoreFiles},
      legendPlace_(legend_) {
  setMinimumSize(kMinSize);
  resize(kFirstSize);
  setAcceptDrops(true);
  timer_.SetInterval(kFirstInterval);
  timer_.SetOnTimer({this, &TViewWnd::AnimateModel});
  ConnectMenus();
  ConnectButtons();
  ConnectView();
  UpdateAppearance();
  ApplySettings(settings);
  OpenFirstFiles(files);
  SetScaleType();
  SetViewScale();
  AnimClick();
  UpdateCaption();
  viewClock_.start();
  views_.Begin(form_.P->View);
  connect(&TEnding::Instance(), &TEnding::OnKeep, this, [this] {
    if (!reading_) KeepSettings();
  });
}

TViewWnd::~TViewWnd() {
  KeepSettings();
  // They go with the base class, when there is nothing left here to draw or to scale.
  form_.P->disconnect(this);
  legend_->disconnect(this);
}

void TViewWnd::KeepSettings() const {
  if (form_.CanSaveMenu->isChecked()) SaveSettings(settingsFile_, CurrentSettings());
}

void TViewWnd::ConnectMenus() {
  const auto call = [this](QAction* item, void (TViewWnd::*handler)()) {
    connect(item, &QAction::triggered, this, [this, handler] { (this->*handler)(); });
  };
  const auto callWithSender = [this](QAction* item, void (TViewWnd::*handler)(QObject*)) {
    connect(item, &QAction::triggered, this, [this, item, handler] { (this->*handler)(item); });
  };
  call(form_.OpenMenu, &TViewWnd::OpenAnyFiles);
  call(form_.SaveJobMenu, &TViewWnd::SaveJobAs);
  call(form_.RestMenu, &TViewWnd::MoveUnmeasured);
  call(form_.FollowMenu, &TViewWnd::MoveUnmeasured);
  connect(form_.JobButton, &QToolButton::clicked, this, &TViewWnd::ShowReport);
  call(form_.LoadModelMenu, &TViewWnd::LoadModelFile);
  call(form_.LoadDataMenu, &TViewWnd::LoadDataFile);
  callWithSender(form_.UnloadModelMenu, &TViewWnd::ClearModels);
  callWithSender(form_.UnloadDataMenu, &TViewWnd::ClearModels);
  call(form_.SaveBitmapMenu, &TViewWnd::SaveBitmap);
  call(form_.ExitMenu, &TViewWnd::ExitMenuClick);
  call(form_.CopyMenu, &TViewWnd::CopyToClipboard);
  call(form_.FitMenu, &TViewWnd::Fit);
  call(form_.UndoViewMenu, &TViewWnd::UndoView);
  call(form_.RedoViewMenu, &TViewWnd::RedoView);
  call(form_.FullPictureMenu, &TViewWnd::ShowFullPicture);
  callWithSender(form_.BackgroundMenu, &TViewWnd::SetColors);
  callWithSender(form_.FontMenu, &TViewWnd::SetColors);
  callWithSender(form_.ElementsMenu, &TViewWnd::SetColors);
  callWithSender(form_.NodesMenu, &TViewWnd::SetColors);
  call(form_.SphereMenu, &TViewWnd::ChangeNodeShape);
  call(form_.CubeMenu, &TViewWnd::ChangeNodeShape);
  call(form_.ShowModelMenu, &TViewWnd::ShowModelClick);
  call(form_.ShowLegendMenu, &TViewWnd::ShowHideMLW);
  call(form_.AboutMenu, &TViewWnd::AboutMenuClick);
}

void TViewWnd::ConnectButtons() {
  for (TImageButton* button :
       {form_.ViewX, form_.ViewY, form_.ViewZ, form_.View3D, form_.View1_1}) {
    connect(button, &TImageButton::OnClick, this, &TViewWnd::SetView);
  }
  for (TImageButton* button : {form_.AnimBack, form_.AnimForward}) {
    connect(button, &TImageButton::OnClick, this, &TViewWnd::AnimateModel);
  }
  connect(form_.Anim, &TImageButton::OnClick, this, &TViewWnd::AnimClick);
  for (TImageButton* button : {form_.AbsolScale, form_.RelatScale, form_.SumScale}) {
    connect(button, &TImageButton::OnClick, this, &TViewWnd::SetScaleType);
  }
  connect(form_.Speed, &QSlider::valueChanged, this, &TViewWnd::SetSpeed);
  connect(form_.ScaleBar, &QSlider::valueChanged, this, &TViewWnd::SetViewScale);
}

void TViewWnd::ConnectView() {
  connect(form_.P, &TGLPanel::OnInit, this, &TViewWnd::GLPanelInit);
  connect(form_.P, &TGLPanel::OnPaint, this, &TViewWnd::GLPanelPaint);
  connect(form_.P, &TGLPanel::OnViewChange, this, &TViewWnd::NoteView);
  connect(&model_, &TModel::OnChange, this, &TViewWnd::FitView);
  connect(legend_, &TModelListWnd::OnShowHide, this, [this] {
    UpdateScale();
    UpdateShown();
  });
  connect(legend_, &TModelListWnd::OnClose, this, [this] {
    // On the way out all windows are closed; the settings are to remember the legend as it was.
    if (isVisible()) form_.ShowLegendMenu->setChecked(false);
  });
}

void TViewWnd::GLPanelInit() {
  picture_.Init(form_.P->Resolver());
  FitView();
}

void TViewWnd::GLPanelPaint() {
  picture_.Paint(form_.P->View, form_.P->PixelSize(), form_.P->devicePixelRatioF(), model_,
                 legend_->Data, animation_.ScaleType, form_.ShowModelMenu->isChecked());
}

void TViewWnd::ApplySettings(const TSettings& settings) {
  form_.Anim->SetDown(settings.AnimationOn);
  if (settings.AnimationSpeed) {
    form_.Speed->setValue(*settings.AnimationSpeed);
    SetSpeed();
  }
  ApplyView(settings, form_.P->View);
  animation_.ScaleType = ScaleTypeOf(settings.ScaleType);
  form_.ScaleBar->setValue(settings.ViewScale.value_or(form_.ScaleBar->value()));
  form_.ShowModelMenu->setChecked(settings.ShowModel);
  form_.CanSaveMenu->setChecked(settings.CanSave);
  form_.FollowMenu->setChecked(settings.FollowNeighbours);
  matrices_ = settings.Matrices;
  savePath_ = settings.SavePath;
  ApplyBounds(settings);
  legend_->Data.CheckedLabels = settings.CheckedLabels;
  appearance_ = AppearanceOf(settings);
  UpdateAppearance();
  form_.SphereMenu->setChecked(appearance_.NodeShape == TNodeShape::Sphere);
  form_.CubeMenu->setChecked(appearance_.NodeShape == TNodeShape::Cube);
}

void TViewWnd::OpenFirstFiles(const QStringList& files) {
  if (std::any_of(files.begin(), files.end(), IsForeign)) return OpenFiles(files);
  if (!files.isEmpty()) {
    if (OpenModel(files[0]) && files.size() > 1) OpenData(files[1]);
    return;
  }
  const auto named = absent_;
  const QStringList names = QStringList{named.modelFile, named.dataFile} + named.moreFiles;
  QStringList present;
  for (const QString& name : names) {
    if (QFileInfo::exists(name) && !present.contains(name)) present << name;
  }
  if (std::any_of(present.begin(), present.end(), IsForeign)) {
    if (!OpenJobFiles(present)) return;
    absent_.checkedLabels = named.checkedLabels;
    if (dataFile_.isEmpty()) absent_.dataFile = named.dataFile;
    for (const QString& name : names) {
      if (!present.contains(name) && name != absent_.dataFile) absent_.moreFiles << name;
    }
    return;
  }
  const bool there = QFileInfo::exists(named.modelFile);
  if (there && !OpenModel(named.modelFile)) return;
  absent_ = named;  // the data that go with the model are still to come
  if (QFileInfo::exists(named.dataFile)) OpenData(named.dataFile);
}

void TViewWnd::ApplyBounds(const TSettings& s) {
  QList<QRect> screens;
  for (const QScreen* screen : QGuiApplication::screens()) screens << screen->availableGeometry();
  const auto set = [&](TWindowPlace& place, QWidget& window, std::optional<int> left,
                       std::optional<int> top, std::optional<int> width,
                       std::optional<int> height) {
    const QPoint position(left.value_or(window.x()), top.value_or(window.y()));
    const QSize size(width.value_or(window.width()), height.value_or(window.height()));
    place.Set(FitToScreens(position, size, screens, window.minimumSize()));
  };
  move(screen()->availableGeometry().center() - rect().center());
  set(place_, *this, s.Left, s.Top, s.Width, s.Height);
  legend_->move(frameGeometry().topRight() - QPoint(legend_->width(), 0) + kLegendOffset);
  set(legendPlace_, *legend_, s.LabelsLeft, s.LabelsTop, s.LabelsWidth, s.LabelsHeight);
  form_.ShowLegendMenu->setChecked(s.LabelsVisible.value_or(form_.ShowLegendMenu->isChecked()));
  ShowHideMLW();
}

TSettings TViewWnd::CurrentSettings() const {
  const TViewTransform& view = form_.P->View;
  const QRect bounds = place_.Bounds(), legendBounds = legendPlace_.Bounds();
  const bool noData = legend_->Data.All.Empty() && !absent_.dataFile.isEmpty();
  TSettings s;
  s.ModelFile = modelFile_.isEmpty() ? absent_.modelFile : modelFile_;
  s.DataFile = dataFile_.isEmpty() ? absent_.dataFile : dataFile_;
  s.MoreFiles = moreModelFiles_ + moreDataFiles_ + absent_.moreFiles;
  s.FollowNeighbours = form_.FollowMenu->isChecked();
  s.AnimationOn = form_.Anim->GetDown();
  s.AnimationSpeed = form_.Speed->value();
  s.RotX = view.Rotation.x;
  s.RotY = view.Rotation.y;
  s.ScaleX = view.ScaleX;
  s.ScaleY = view.ScaleY;
  s.ScaleZ = view.Zoom;
  s.PanPosX = view.PanPosX;
  s.PanPosY = view.PanPosY;
  s.ScaleType = static_cast<int>(animation_.ScaleType);
  s.ViewScale = form_.ScaleBar->value();
  s.ShowModel = form_.ShowModelMenu->isChecked();
  s.CanSave = form_.CanSaveMenu->isChecked();
  s.SavePath = savePath_;
  s.Left = bounds.x();
  s.Top = bounds.y();
  s.Width = bounds.width();
  s.Height = bounds.height();
  s.LabelsLeft = legendBounds.x();
  s.LabelsTop = legendBounds.y();
  s.LabelsWidth = legendBounds.width();
  s.LabelsHeight = legendBounds.height();
  s.LabelsVisible = form_.ShowLegendMenu->isChecked();
  s.CheckedLabels = noData ? absent_.checkedLabels : legend_->MakeCheckString();
  s.BackColor = appearance_.BackColor;
  s.ElementColor = appearance_.ElementColor;
  s.NodeColor = appearance_.NodeColor;
  s.FontColor = appearance_.FontColor;
  s.NodeShape = static_cast<int>(appearance_.NodeShape);
  return s;
}

void TViewWnd::LoadModelFile() {
  const QString fileName = Dialogs.ModelFile(this, IfItExists(modelFile_));
  if (!fileName.isEmpty()) OpenModel(fileName);
}

void TViewWnd::LoadDataFile() {
  const QString present = IfItExists(dataFile_);
  const QString start = present.isEmpty() ? FolderOf(modelFile_) : present;
  const QString fileName = Dialogs.DataFile(this, start);
  if (!fileName.isEmpty()) OpenData(fileName);
}

TLoadReport TViewWnd::Read(
    TFileKind kind, const QString& fileName,
    const std::function<TLoadReport(std::string_view, const TLoadProgress&)>& load) {
  const QScopedValueRollback guard(reading_, true);
  TLoadDialog dialog(this, fileName, Dialogs.LoadDelayMs);
  return LoadFileOf(kind, fileName, dialog.Progress(), load);
}

bool TViewWnd::OpenModel(const QString& fileName) {
  if (reading_) return false;
  if (IsForeign(fileName)) return OpenJobFiles({fileName});
  const TLoadReport report =
      Read(TFileKind::Model, fileName, [&](std::string_view text, const TLoadProgress& progress) {
        return model_.LoadFromMemory(text, progress);
      });
  const bool loaded = !report.Cancelled() && !report.Failed();
  if (loaded) {
    if (!AreSameFile(fileName, modelFile_.isEmpty() ? absent_.modelFile : modelFile_)) BeginView();
    absent_ = {};
    modelFile_ = QFileInfo(fileName).absoluteFilePath();
    moreModelFiles_.clear();
    UnloadData();
  }
  if (const QString fault = report.Sentence(fileName); !fault.isEmpty()) ShowMessage(fault);
  return loaded;
}

void TViewWnd::OpenData(const QString& fileName) {
  if (reading_) return;
  if (IsForeign(fileName)) {
    OpenJobFiles({fileName}, TWanted::DataOnly);
    return;
  }
  const TLoadReport report =
      Read(TFileKind::Data, fileName, [&](std::string_view text, const TLoadProgress& progress) {
        return legend_->LoadFromMemory(text, model_, progress);
      });
  if (!report.Cancelled() && !report.Failed()) {
    dataFile_ = QFileInfo(fileName).absoluteFilePath();
    moreDataFiles_.clear();
    ForgetFindings();
    UpdateScale();
    UpdateShown();
    UpdateCaption();
  }
  if (const QString fault = report.Sentence(fileName); !fault.isEmpty()) ShowMessage(fault);
}

void TViewWnd::OpenFiles(const QStringList& fileNames) {
  QStringList models;
  QStringList others;
  QStringList forms;
  bool isJob = false;
  for (const QString& name : fileNames) {
    const TFileContent content = ContentOf(name);
    const bool isForm = OpenForm && content == TFileContent::Form;
    (isForm ? forms : content == TFileContent::Model ? models : others) << name;
    isJob |= IsForeignContent(content);
  }
  for (const QString& name : forms) OpenForm(name);
  if (isJob) {
    OpenJobFiles(models + others);
    return;
  }
  if (models.size() > 1 || others.size() > 1) {
    ShowMessage(QStringLiteral("Only one model file and one data file can be opened at a time."));
    return;
  }
  if (!models.isEmpty() && !OpenModel(models.front())) return;  // its data fit no other model
  for (const QString& name : others) OpenData(name);
}

void TViewWnd::OpenAnyFiles() {
  const QString start = IfItExists(modelFile_.isEmpty() ? dataFile_ : modelFile_);
  const QStringList fileNames = Dialogs.Files(this, FolderOf(start));
  if (!fileNames.isEmpty()) OpenFiles(fileNames);
}

bool TViewWnd::OpenJobFiles(const QStringList& fileNames, TWanted wanted) {
  if (reading_) return false;
  TOpenedJob job;
  {
    const QScopedValueRollback guard(reading_, true);
    TLoadDialog dialog(this, fileNames.front(), Dialogs.LoadDelayMs);
    job = OpenJob(fileNames, model_, legend_->Data, wanted, dialog.Progress(), matrices_);
  }
  const bool loaded = job.HasModel || job.HasData;
  if (loaded) TakeJob(job);
  if (loaded || !job.Functions.empty()) {
    TellFindings(job.Findings);
  } else if (!job.Findings.Cancelled()) {
    ShowMessage(job.Findings.Line());
  }
  return loaded;
}

void TViewWnd::TakeJob(const TOpenedJob& job) {
  if (job.HasModel) {
    moreModelFiles_ = Absolute(job.ModelFiles);
    const QString model = moreModelFiles_.takeFirst();
    if (!AreSameFile(model, modelFile_.isEmpty() ? absent_.modelFile : modelFile_)) BeginView();
    absent_ = {};
    modelFile_ = model;
    if (!job.HasData) UnloadData();
  }
  if (job.HasData) {
    moreDataFiles_ = Absolute(job.DataFiles);
    dataFile_ = moreDataFiles_.takeFirst();
    for (const QString& name : moreModelFiles_ + QStringList(modelFile_)) {
      moreDataFiles_.removeAll(name);
    }
    absent_.dataFile.clear();
    absent_.moreFiles.clear();
    legend_->FillLabels();
    MoveUnmeasured();
  }
  UpdateShown();
  UpdateCaption();
}

void TViewWnd::TellFindings(const TFindings& findings) {
  report_ = findings.Text();
  form_.JobButton->setText(findings.Line());
  form_.JobButton->setToolTip(findings.Line() +
                              QStringLiteral("\nClick to see what was in the files"));
  form_.JobButton->show();
  form_.CountLabel->hide();
}

void TViewWnd::ForgetFindings() {
  report_.clear();
  form_.JobButton->hide();
  form_.CountLabel->show();
}

void TViewWnd::ShowReport() { TReportDialog(report_, this).exec(); }

void TViewWnd::MoveUnmeasured() {
  if (reading_) return;
  {
    const QScopedValueRollback guard(reading_, true);
    TLoadDialog dialog(this, dataFile_, Dialogs.LoadDelayMs);
    const bool moved =
        ::MoveUnmeasured(form_.FollowMenu->isChecked(), model_, legend_->Data, dialog.Progress());
    if (!moved) form_.RestMenu->setChecked(true);
  }
  UpdateScale();
}

void TViewWnd::SaveJobAs() {
  if (reading_) return;
  if (model_.Nodes.Empty()) return ShowMessage(QStringLiteral("There is no model to save."));
  const QString chosen = Dialogs.JobFile(this, FolderOf(modelFile_));
  if (chosen.isEmpty()) return;
  const QString fileName = WithJobSuffix(chosen);
  for (const QString& name : FilesToWrite(fileName, legend_->Data)) {
    const bool asked = name == chosen;  // by the dialog
    if (!asked && QFileInfo::exists(name) && !Dialogs.Overwrite(this, name)) return;
  }
  TUniversalOptions options;
  options.Written = QDateTime::currentDateTime();
  TFindings findings;
  findings.BeginFile(fileName);
  const QString fault = SaveJob(model_, legend_->Data, fileName, options, findings);
  if (!fault.isEmpty()) return ShowMessage(fault);
  if (findings.ToKnow() > 0) TReportDialog(findings.Text(), this).exec();
}

void TViewWnd::ClearModels(QObject* sender) {
  if (reading_) return;
  if (sender == form_.UnloadModelMenu) {
    model_.Clear();
    modelFile_.clear();
    moreModelFiles_.clear();
    absent_.modelFile.clear();
  }
  absent_.dataFile.clear();
  absent_.moreFiles.clear();
  UnloadData();
}

void TViewWnd::UnloadData() {
  for (TNode* node : model_.Display) node->Position = node->Angles = {};
  legend_->Clear();
  dataFile_.clear();
  moreDataFiles_.clear();
  ForgetFindings();
  UpdateShown();
  UpdateCaption();
  form_.P->Invalidate();
}

void TViewWnd::UpdateCaption() {
  QString caption =
      QStringLiteral("%1 %2").arg(QLatin1String(kProgramTitle), QLatin1String(kProgramVersion));
  if (!modelFile_.isEmpty()) caption += " : " + TitleFileName(modelFile_);
  if (!dataFile_.isEmpty()) {
    if (!modelFile_.isEmpty()) caption += " + ";
    caption += TitleFileName(dataFile_);
  }
  setWindowTitle(caption);
  form_.ShowModelMenu->setChecked(dataFile_.isEmpty());
  if (dataFile_.isEmpty()) model_.Loaded = true;  // else "Show Model" would be checked in vain
}

void TViewWnd::SaveBitmap() {
  const bool known = !savePath_.isEmpty() && QFileInfo(savePath_).isDir();
  const QString chosen =
      Dialogs.PictureFile(this, known ? savePath_ : QCoreApplication::applicationDirPath());
  if (chosen.isEmpty()) return;
  const QString fileName = WithPictureSuffix(chosen);
  const QString fault = SavePicture(form_.P->Picture(), fileName);
  if (!fault.isEmpty()) return ShowMessage(fault);
  savePath_ = FolderOf(fileName);
}

void TViewWnd::ExitMenuClick() { close(); }

void TViewWnd::CopyToClipboard() { form_.P->CopyToClipboard(); }

void TViewWnd::SetColors(QObject* sender) {
  const std::pair<QObject*, TColor*> colors[] = {
      {form_.BackgroundMenu, &appearance_.BackColor},
      {form_.FontMenu, &appearance_.FontColor},
      {form_.ElementsMenu, &appearance_.ElementColor},
      {form_.NodesMenu, &appearance_.NodeColor},
  };
  for (const auto& [item, color] : colors) {
    if (sender != item) continue;
    const QColor chosen = Dialogs.Color(this, color->ToQColor());
    if (!chosen.isValid()) return;
    *color = TColor::FromQColor(chosen);
    UpdateAppearance();
  }
}

void TViewWnd::ChangeNodeShape() {
  appearance_.NodeShape = form_.CubeMenu->isChecked() ? TNodeShape::Cube : TNodeShape::Sphere;
  UpdateAppearance();
}

void TViewWnd::UpdateAppearance() {
  ApplyAppearance(appearance_, model_, legend_->Data);
  form_.P->BackColor = appearance_.BackColor.ToQColor();
  picture_.Overlay.SetColor(appearance_.FontColor.ToQColor());
  form_.P->Invalidate();
}

void TViewWnd::ShowModelClick() {
  model_.Loaded = form_.ShowModelMenu->isChecked();
  form_.P->Invalidate();
}

void TViewWnd::ShowHideMLW() { legend_->setVisible(form_.ShowLegendMenu->isChecked()); }

void TViewWnd::AboutMenuClick() { TAnimatorAbout(form_.P->RendererName(), this).exec(); }

void TViewWnd::SetView(QObject* sender) {
  TViewTransform& view = form_.P->View;
  if (sender == form_.ViewX) view.Rotation = kAlongX;
  if (sender == form_.ViewY) view.Rotation = kAlongY;
  if (sender == form_.ViewZ) view.Rotation = kAlongZ;
  if (sender == form_.View3D) view.Rotation = kOblique;
  if (sender == form_.View1_1) {
    view.ScaleX = view.ScaleY = view.Zoom = 1.0;
    ResetPan();
    form_.P->ScaleViewPort();  // else the picture would be squeezed until the next resize
  }
  views_.NoteWhole(form_.P->View);
  form_.P->Invalidate();
}

void TViewWnd::Fit() {
  FitToShown(form_.P->View, model_, legend_->Data, animation_.ScaleType,
             form_.ShowModelMenu->isChecked());
  views_.NoteWhole(form_.P->View);
  form_.P->Invalidate();
}

void TViewWnd::NoteView() { views_.Note(form_.P->View, viewClock_.elapsed()); }

void TViewWnd::UndoView() {
  views_.Undo(form_.P->View);
  form_.P->Invalidate();
}

void TViewWnd::RedoView() {
  views_.Redo(form_.P->View);
  form_.P->Invalidate();
}

void TViewWnd::ShowFullPicture() {
  const bool full = form_.FullPictureMenu->isChecked();
  menuBar()->setVisible(!full);
  statusBar()->setVisible(!full);
  form_.ButtonBar->setVisible(!full);
  setWindowState(windowState().setFlag(Qt::WindowFullScreen, full));
}

void TViewWnd::BeginView() {
  ResetPan();
  views_.Begin(form_.P->View);
}

void TViewWnd::ResetPan() { form_.P->View.PanPosX = form_.P->View.PanPosY = 0.0; }

void TViewWnd::FitView() {
  form_.P->View.ModelSize = ModelSizeOf(model_);
  form_.P->Invalidate();
}

void TViewWnd::AnimateModel(QObject* sender) {
  if (reading_) return;
  if (!animation_.Step(legend_->Data, model_, sender == form_.AnimBack)) return;
  UpdateFrameText();
  form_.P->Invalidate();
}

void TViewWnd::AnimClick() {
  const bool on = form_.Anim->GetDown();
  timer_.SetEnabled(on);
  form_.AnimBack->setEnabled(!on);
  form_.AnimForward->setEnabled(!on);
}

void TViewWnd::SetSpeed() {
  timer_.SetInterval(
      static_cast<quint32>((form_.Speed->maximum() - form_.Speed->value() + 10) / 10));
}

void TViewWnd::SetViewScale() {
  animation_.ViewScale = ViewScaleAt(form_.ScaleBar->value());
  UpdateScale();
}

void TViewWnd::SetScaleType(QObject* button) {
  TImageButton* const buttons[] = {form_.AbsolScale, form_.RelatScale, form_.SumScale};
  for (int type = 0; type < 3; ++type) {
    if (button == buttons[type]) animation_.ScaleType = static_cast<TScaleType>(type);
  }
  for (int type = 0; type < 3; ++type) {
    buttons[type]->SetDown(animation_.ScaleType == static_cast<TScaleType>(type));
  }
  animation_.Show(legend_->Data, model_);
  UpdateScale();
}

void TViewWnd::UpdateScale() {
  animation_.UpdateScale(legend_->Data, model_);
  UpdateFrameText();
  form_.P->Invalidate();
}

void TViewWnd::UpdateShown() {
  animation_.Show(legend_->Data, model_);
  picture_.Overlay.SetLines(OverlayLines(legend_->Data));
  form_.ShownLabel->setText(ShownText(legend_->Data));
  form_.CountLabel->setText(CountText(model_));
  UpdateFrameText();
}

void TViewWnd::UpdateFrameText() {
  form_.FrameLabel->setText(FrameText(animation_, legend_->Data));
}

void TViewWnd::closeEvent(QCloseEvent* event) {
  // The reader goes on behind this event; its progress dialog is the way to end it.
  if (reading_) return event->ignore();
  QMainWindow::closeEvent(event);
}

void TViewWnd::dragEnterEvent(QDragEnterEvent* event) {
  event->setAccepted(!reading_ && !LocalFiles(event->mimeData()).isEmpty());
}

void TViewWnd::dragMoveEvent(QDragMoveEvent* event) { event->accept(); }

void TViewWnd::dropEvent(QDropEvent* event) {
  const QStringList files = LocalFiles(event->mimeData());
  event->acceptProposedAction();
  // Where the files came from waits for the answer to the drop; it need not wait for the load.
  QMetaObject::invokeMethod(
      this, [this, files] { OpenFiles(files); }, Qt::QueuedConnection);
}

#include "components/package/Panelwindow.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QFileDialog>
#include <QImageWriter>
#include <QLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QPixmap>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>

#include "components/controls/Korvaltools.h"
#include "model/Ending.h"
#include "model/Message.h"
#include "model/Oneline.h"

namespace {

constexpr int kShownFaults = 20;
constexpr qint64 kMaxPicture = 1 << 25;  ///< pixels

/// Empty if a window of that size can be kept in memory.
QString TooLarge(QSize size) {
  if (qint64{size.width()} * size.height() <= kMaxPicture) return {};
  return QStringLiteral("%1 x %2 pixels are too many").arg(size.width()).arg(size.height());
}

/// False with a sentence if the picture cannot be made or written.
bool WritePicture(QWidget& widget, const QString& fileName, QString* error) {
  const double ratio = widget.devicePixelRatioF();
  const QSize size = widget.size() * ratio;
  QString reason = TooLarge(size);
  if (reason.isEmpty()) {
    QPixmap picture(size);
    picture.setDevicePixelRatio(ratio);
    picture.fill(widget.palette().color(QPalette::Window));
    widget.render(&picture);
    QImageWriter writer(fileName);
    if (writer.write(picture.toImage())) return true;
    reason = writer.errorString();
  }
  *error = QStringLiteral("Cannot write %1: %2").arg(fileName, reason);
  return false;
}

TPanelWindow::TAnswer AskWithBox(QWidget* parent, const QString& question) {
  const auto button = QMessageBox::question(
      parent, parent->windowTitle(), question,
      QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
  return button == QMessageBox::Save      ? TPanelWindow::TAnswer::Save
         : button == QMessageBox::Discard ? TPanelWindow::TAnswer::Discard
                                          : TPanelWindow::TAnswer::Cancel;
}

void ShowFaults(const QStringList& faults) {
  if (faults.isEmpty()) return;
  QStringList shown = faults.mid(0, kShownFaults);
  if (faults.size() > kShownFaults) {
    shown.append(QStringLiteral("... and %1 more").arg(faults.size() - kShownFaults));
  }
  ShowMessage(shown.join('\n'));
}

}  // namespace

std::unique_ptr<TPanel> OpenPanel(const QString& fileName) {
  QStringList faults;
  auto panel = TPanel::Load(fileName, &faults);
  ShowFaults(faults);
  if (panel) panel->Start();
  return panel;
}

TPanelWindow::TPanelWindow(std::unique_ptr<TPanel> panel) {
  QMenu* menu = menuBar()->addMenu(tr("&Panel"));
  menu->addAction(tr("&Save"), QKeySequence::Save, this, &TPanelWindow::Save);
  menu->addAction(tr("Save &as..."), QKeySequence::SaveAs, this, &TPanelWindow::SaveAs);
  menu->addAction(tr("&Reload"), QKeySequence::Refresh, this, &TPanelWindow::Reload);
  menu->addSeparator();
  showComponents_ = menu->addAction(tr("Show co&mponents"));
  showComponents_->setCheckable(true);
  connect(showComponents_, &QAction::toggled, this, &TPanelWindow::ShowComponents);
  menu->addSeparator();
  menu->addAction(tr("&Close"), QKeySequence::Close, this, &QWidget::close);
  Show(std::move(panel));
  connect(&TEnding::Instance(), &TEnding::OnKeep, this, &TPanelWindow::Keep);
}

/// The components go while the panel still knows them.
TPanelWindow::~TPanelWindow() { delete takeCentralWidget(); }

void TPanelWindow::Show(std::unique_ptr<TPanel> panel) {
  delete takeCentralWidget();
  panel_ = std::move(panel);
  QWidget* root = panel_->Root();
  const QString title =
      root->windowTitle().isEmpty() ? TitleFileName(panel_->FileName()) : root->windowTitle();
  setWindowTitle(QStringLiteral("%1 - Velmora Animator").arg(title));
  const QSize size = root->size().expandedTo(root->minimumSizeHint());
  const QSize room = screen()->availableSize();
  root->setWindowFlags(Qt::Widget);
  if (size.boundedTo(room) == size) {
    setCentralWidget(root);
  } else {
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(root);
    setCentralWidget(scroll);
  }
  root->show();
  resize((size + QSize(0, menuBar()->sizeHint().height())).boundedTo(room));
  ShowComponents(showComponents_->isChecked());
  settings_ = panel_->Settings();
}

bool TPanelWindow::SaveTo(const QString& fileName) {
  QString error;
  if (!panel_->Save(fileName, &error)) {
    ShowMessage(error);
    return false;
  }
  settings_ = panel_->Settings();
  return true;
}

void TPanelWindow::Keep() {
  if (panel_->Settings() != settings_) SaveTo(panel_->FileName());
}

void TPanelWindow::closeEvent(QCloseEvent* event) {
  if (panel_->Settings() == settings_) return event->accept();
  const QString question =
      tr("Settings of %1 have been changed. Save them?").arg(panel_->FileName());
  const TAnswer answer = AskToSave ? AskToSave(question) : AskWithBox(this, question);
  const bool close =
      answer == TAnswer::Discard || (answer == TAnswer::Save && SaveTo(panel_->FileName()));
  event->setAccepted(close);
}

void TPanelWindow::Save() { SaveTo(panel_->FileName()); }

void TPanelWindow::SaveAs() {
  const QString fileName =
      QFileDialog::getSaveFileName(this, tr("Save panel"), panel_->FileName(), tr("Panels (*.ui)"));
  if (!fileName.isEmpty()) SaveTo(fileName);
}

void TPanelWindow::Reload() {
  if (auto panel = OpenPanel(panel_->FileName())) Show(std::move(panel));
}

void TPanelWindow::ShowComponents(bool show) {
  if (panel_->Root()) SetDesignMode(panel_->Root(), show);
}

bool RunPanel(const QString& fileName, const TPanelRun& run) {
  QStringList faults;
  const auto panel = TPanel::Load(fileName, &faults);
  ShowFaults(faults);
  if (!panel) return false;
  panel->Start();
  QWidget& root = *panel->Root();
  root.setAttribute(Qt::WA_DontShowOnScreen);
  // A window's own minimum size is a message to a window system that is not there.
  if (QLayout* layout = root.layout()) layout->setSizeConstraint(QLayout::SetNoConstraint);
  const QSize size =
      (run.Size.isValid() ? run.Size : root.size()).expandedTo(root.minimumSizeHint());
  const QString tooLarge = TooLarge(size);
  if (!tooLarge.isEmpty() && !run.PictureFile.isEmpty()) {
    ShowMessage(QStringLiteral("Cannot write %1: %2").arg(run.PictureFile, tooLarge));
    return false;
  }
  constexpr QSize kSomeSize(640, 480);
  root.resize(tooLarge.isEmpty() ? size : kSomeSize);
  root.show();
  QEventLoop loop;
  QTimer::singleShot(static_cast<int>(run.Seconds * 1000.0), &loop, &QEventLoop::quit);
  loop.exec();
  QString error;
  if (!run.PictureFile.isEmpty() && !WritePicture(root, run.PictureFile, &error)) {
    ShowMessage(error);
    return false;
  }
  if (!run.SaveFile.isEmpty() && !panel->Save(run.SaveFile, &error)) {
    ShowMessage(error);
    return false;
  }
  return faults.isEmpty();
}

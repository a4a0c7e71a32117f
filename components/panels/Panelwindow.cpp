#include "components/panels/Panelwindow.h"

#include <QCloseEvent>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <QLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

#include "components/controls/Designmode.h"
#include "components/panels/Trust.h"
#include "model/Ending.h"
#include "model/Message.h"
#include "model/Oneline.h"
#include "model/Writepicture.h"

namespace {

constexpr int kShownFaults = 20;
constexpr qint64 kMaxPicture = 1 << 25;  ///< pixels

/// Empty if a window of that size can be kept in memory.
QString TooLarge(QSize size) {
  if (qint64{size.width()} * size.height() <= kMaxPicture) return {};
  return QStringLiteral("%1 x %2 pixels are too many").arg(size.width()).arg(size.height());
}

/// False with a sentence if the picture cannot be made or written; an earlier one is replaced only
/// once all is written.
bool WritePicture(QWidget& widget, const QString& fileName, QString* error) {
  const double ratio = widget.devicePixelRatioF();
  const QSize size = widget.size() * ratio;
  QString reason = TooLarge(size);
  if (reason.isEmpty()) {
    QPixmap picture(size);
    picture.setDevicePixelRatio(ratio);
    picture.fill(widget.palette().color(QPalette::Window));
    widget.render(&picture);
    reason = WritePictureFile(picture.toImage(), fileName,
                              QFileInfo(fileName).suffix().toLower().toLatin1());
    if (reason.isEmpty()) return true;
  }
  *error = QStringLiteral("Cannot write %1: %2").arg(fileName, reason);
  return false;
}

using TAnswer = TPanelWindow::TAnswer;

QString AnswerText(TAnswer answer) {
  switch (answer) {
    case TAnswer::Save:
      return TPanelWindow::tr("Save");
    case TAnswer::Discard:
      return TPanelWindow::tr("Discard");
    case TAnswer::Overwrite:
      return TPanelWindow::tr("Overwrite");
    case TAnswer::Reload:
      return TPanelWindow::tr("Reload");
    case TAnswer::SaveAs:
      return TPanelWindow::tr("Save as...");
    case TAnswer::Cancel:
      break;
  }
  return TPanelWindow::tr("Cancel");
}

TAnswer AskWithBox(QWidget* parent, const QString& question, const QList<TAnswer>& answers) {
  QMessageBox box(QMessageBox::Question, parent->windowTitle(), question, QMessageBox::NoButton,
                  parent);
  box.setTextFormat(Qt::PlainText);
  QHash<QAbstractButton*, TAnswer> buttons;
  for (const TAnswer answer : answers) {
    const auto role = answer == TAnswer::Cancel ? QMessageBox::RejectRole : QMessageBox::AcceptRole;
    QPushButton* button = box.addButton(AnswerText(answer), role);
    buttons.insert(button, answer);
    if (answer == TAnswer::Cancel) box.setEscapeButton(button);
  }
  box.exec();
  return buttons.value(box.clickedButton(), TAnswer::Cancel);
}

/// The user allowed this panel, as it is, before.
bool IsAllowed(const TPanel& panel) { return IsTrusted(panel.Mark()); }

/// A panel that was allowed stays allowed when the program itself writes it. So does, in another
/// folder, one that wanted nothing: its pictures have stayed in the old one.
bool SaveAllowed(TPanel& panel, const QString& fileName, QString* error) {
  const bool moves = QFileInfo(fileName).dir() != QFileInfo(panel.FileName()).dir();
  const bool allowed = !panel.IsAtRest() && (IsAllowed(panel) || (moves && panel.Wishes().empty()));
  if (!panel.Save(fileName, error)) return false;
  if (allowed) {
    // What the file says of what it wants is known once it is read as a whole.
    const auto written = TPanel::Load(fileName, nullptr);
    const bool isOurs = written && written->Mark().Content == panel.Mark().Content;
    if (isOurs) *error = TrustFile(written->Mark());
  }
  return error->isEmpty();
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

std::unique_ptr<TPanel> OpenPanel(const QString& fileName, bool trusted) {
  QStringList faults;
  auto panel = TPanel::Load(fileName, &faults, trusted);
  ShowFaults(faults);
  return panel;
}

TPanelWindow::TPanelWindow(std::unique_ptr<TPanel> panel, bool trusted) : trusted_(trusted) {
  QMenu* menu = menuBar()->addMenu(tr("&Panel"));
  menu->addAction(tr("&Save"), QKeySequence::Save, this, &TPanelWindow::Save);
  menu->addAction(tr("Save &as..."), QKeySequence::SaveAs, this, &TPanelWindow::SaveAs);
  menu->addAction(tr("&Reload"), QKeySequence::Refresh, this, &TPanelWindow::Reload);
  menu->addSeparator();
  showWishes_ = menu->addAction(tr("S&tart..."), this, &TPanelWindow::ShowWishes);
  showComponents_ = menu->addAction(tr("Show co&mponents"));
  showComponents_->setCheckable(true);
  connect(showComponents_, &QAction::toggled, this, &TPanelWindow::ShowComponents);
  menu->addSeparator();
  menu->addAction(tr("&Close"), QKeySequence::Close, this, &QWidget::close);
  auto* room = new QWidget(this);
  column_ = new QVBoxLayout(room);
  column_->setContentsMargins(0, 0, 0, 0);
  column_->setSpacing(0);
  setCentralWidget(room);
  Show(std::move(panel));
  connect(&TEnding::Instance(), &TEnding::OnKeep, this, &TPanelWindow::Keep);
}

/// The components go while the panel still knows them.
TPanelWindow::~TPanelWindow() { delete takeCentralWidget(); }

void TPanelWindow::Show(std::unique_ptr<TPanel> panel) {
  while (QLayoutItem* item = column_->takeAt(0)) {
    delete item->widget();
    delete item;
  }
  bar_ = nullptr;
  panel_ = std::move(panel);
  QWidget* root = panel_->Root();
  const QSize size = root->size().expandedTo(root->minimumSizeHint());
  const QSize room = screen()->availableSize();
  root->setWindowFlags(Qt::Widget);
  if (size.boundedTo(room) == size) {
    column_->addWidget(root, 1);
  } else {
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(root);
    column_->addWidget(scroll, 1);
  }
  root->show();
  resize((size + QSize(0, menuBar()->sizeHint().height())).boundedTo(room));
  ShowComponents(showComponents_->isChecked());
  settings_ = panel_->Settings();
  state_ = panel_->State();
  StartOrAsk();
}

void TPanelWindow::ShowTitle() {
  const QWidget* root = panel_->Root();
  const QString title =
      root->windowTitle().isEmpty() ? TitleFileName(panel_->FileName()) : root->windowTitle();
  const QString rest = panel_->IsAtRest() ? tr(" (at rest)") : QString();
  setWindowTitle(QStringLiteral("%1%2 - Velmora Animator").arg(title, rest));
  showWishes_->setEnabled(panel_->IsAtRest());
}

// Starting

void TPanelWindow::StartOrAsk() {
  const TPanelMark mark = panel_->Mark();
  if (trusted_ || panel_->Wishes().empty() || mark == started_ || IsAllowed(*panel_)) {
    return Start();
  }
  ShowWishes();
  ShowTitle();
}

void TPanelWindow::Start() {
  RemoveBar();
  started_ = panel_->Mark();
  panel_->Start();
  ShowTitle();
}

void TPanelWindow::ShowWishes() {
  if (bar_ || !panel_->IsAtRest()) return;
  const QString folder = QFileInfo(panel_->FileName()).absolutePath();
  bar_ = new TWishBar(panel_->Wishes(), folder, UnsafeFolder(folder), centralWidget());
  connect(bar_, &TWishBar::OnAnswer, this, &TPanelWindow::TakeAnswer);
  column_->insertWidget(0, bar_);
  if (!isMaximized()) resize(width(), height() + bar_->sizeHint().height());
}

void TPanelWindow::RemoveBar() {
  if (!bar_) return;
  const int taken = bar_->height();
  bar_->hide();
  bar_->deleteLater();
  column_->removeWidget(bar_);
  bar_ = nullptr;
  if (!isMaximized()) resize(width(), height() - taken);
}

void TPanelWindow::TakeAnswer(TWishBar::TAnswer answer) {
  using TBarAnswer = TWishBar::TAnswer;
  if (answer == TBarAnswer::LeaveOff) return RemoveBar();
  QString fault;
  if (answer == TBarAnswer::AlwaysFile) fault = TrustFile(panel_->Mark());
  if (answer == TBarAnswer::AlwaysFolder) {
    fault = TrustFolder(QFileInfo(panel_->FileName()).absolutePath());
  }
  Start();
  if (!fault.isEmpty()) ShowMessage(fault);
}

// Saving and reading

TPanelWindow::TAnswer TPanelWindow::AskUser(const QString& question,
                                            const QList<TAnswer>& answers) {
  return Ask ? Ask(question, answers) : AskWithBox(this, question, answers);
}

bool TPanelWindow::SaveTo(const QString& fileName) {
  if (QFileInfo(fileName) == QFileInfo(panel_->FileName()) && panel_->IsChangedOnDisk()) {
    const TAnswer answer =
        AskUser(tr("Another program has changed %1 since it was read.").arg(fileName),
                {TAnswer::Overwrite, TAnswer::Reload, TAnswer::SaveAs, TAnswer::Cancel});
    if (answer == TAnswer::Reload) Read();
    if (answer == TAnswer::SaveAs) return SaveUnderNewName();
    if (answer != TAnswer::Overwrite) return false;
  }
  QString error;
  const bool saved = SaveAllowed(*panel_, fileName, &error);
  if (!error.isEmpty()) ShowMessage(error);
  if (!saved) return false;
  if (!panel_->IsAtRest()) started_ = panel_->Mark();
  settings_ = panel_->Settings();
  state_ = panel_->State();
  ShowTitle();
  return true;
}

/// Beside the file, if another program has changed that.
void TPanelWindow::Keep() {
  if (panel_->Settings() == settings_) return;
  const QString& name = panel_->FileName();
  SaveTo(panel_->IsChangedOnDisk() ? name + QStringLiteral(".unsaved.ui") : name);
}

void TPanelWindow::closeEvent(QCloseEvent* event) {
  if (panel_->Settings() == settings_) return event->accept();
  const TAnswer answer =
      AskUser(tr("Settings of %1 have been changed. Save them?").arg(panel_->FileName()),
              {TAnswer::Save, TAnswer::Discard, TAnswer::Cancel});
  const bool close =
      answer == TAnswer::Discard || (answer == TAnswer::Save && SaveTo(panel_->FileName()));
  event->setAccepted(close);
}

void TPanelWindow::Save() { SaveTo(panel_->FileName()); }

void TPanelWindow::SaveAs() { SaveUnderNewName(); }

bool TPanelWindow::SaveUnderNewName() {
  const QString fileName =
      AskFileName ? AskFileName()
                  : QFileDialog::getSaveFileName(this, tr("Save panel"), panel_->FileName(),
                                                 tr("Panels (*.ui)"));
  return !fileName.isEmpty() && SaveTo(fileName);
}

void TPanelWindow::Reload() {
  if (panel_->State() != state_ &&
      AskUser(tr("What has been set and measured since %1 was read or saved would go.")
                  .arg(panel_->FileName()),
              {TAnswer::Reload, TAnswer::Cancel}) != TAnswer::Reload) {
    return;
  }
  Read();
}

void TPanelWindow::Read() {
  if (auto panel = OpenPanel(panel_->FileName(), trusted_)) Show(std::move(panel));
}

void TPanelWindow::ShowComponents(bool show) {
  if (panel_->Root()) SetDesignMode(panel_->Root(), show);
}

// Without a window

namespace {

/// False, after a message, if the panel wants something that nobody has allowed.
bool StartAllowed(TPanel& panel, bool trusted) {
  const TWishes wishes = panel.Wishes();
  if (trusted || wishes.empty() || IsAllowed(panel)) {
    panel.Start();
    return true;
  }
  QStringList lines{
      QStringLiteral("%1 has not been allowed to do what it wants; --trust allows it:")
          .arg(panel.FileName())};
  for (const TWish& wish : wishes) lines.append("  " + wish.Text);
  ShowMessage(lines.join('\n'));
  return false;
}

bool SaveRun(TPanel& panel, const TPanelRun& run, QString* error) {
  const bool same = QFileInfo(run.SaveFile) == QFileInfo(panel.FileName());
  if (!run.Overwrites && same && panel.IsChangedOnDisk()) {
    *error = QStringLiteral(
                 "Cannot write %1: another program has changed it since it was read; --force "
                 "overwrites it")
                 .arg(run.SaveFile);
    return false;
  }
  return SaveAllowed(panel, run.SaveFile, error);
}

}  // namespace

bool RunPanel(const QString& fileName, const TPanelRun& run) {
  QStringList faults;
  const auto panel = TPanel::Load(fileName, &faults, run.IsTrusted);
  ShowFaults(faults);
  if (!panel || !StartAllowed(*panel, run.IsTrusted)) return false;
  QWidget& root = *panel->Root();
  root.setAttribute(Qt::WA_DontShowOnScreen);
  // A window's own minimum size is a message to a window system that is not there.
  if (QLayout* layout = root.layout()) layout->setSizeConstraint(QLayout::SetNoConstraint);
  root.ensurePolished();  // a style sheet has sizes, too
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
  if ((!run.PictureFile.isEmpty() && !WritePicture(root, run.PictureFile, &error)) ||
      (!run.SaveFile.isEmpty() && !SaveRun(*panel, run, &error))) {
    ShowMessage(error);
    return false;
  }
  return faults.isEmpty();
}

#include "viewer/window/Loaddialog.h"

#include <QCoreApplication>
#include <QLabel>

#include "model/Oneline.h"

namespace {

constexpr int kServeEveryMs = 40;
constexpr int kSteps = 1000;

}  // namespace

TLoadDialog::TLoadDialog(QWidget* parent, const QString& fileName, int delayMs)
    : parent_(parent), fileName_(fileName), delayMs_(delayMs) {
  clock_.start();
}

TLoadProgress TLoadDialog::Progress() {
  return [this](double done) { return Advance(done); };
}

bool TLoadDialog::Advance(double done) {
  const qint64 now = clock_.elapsed();
  const bool opens = !dialog_ && now >= delayMs_;
  if (!opens && now - servedMs_ < kServeEveryMs) return true;
  servedMs_ = now;
  if (opens) Open();
  if (dialog_) dialog_->setValue(static_cast<int>(done * kSteps));
  // Until the dialog is there to hold input off the windows, input waits.
  QCoreApplication::processEvents(dialog_ ? QEventLoop::AllEvents
                                          : QEventLoop::ExcludeUserInputEvents);
  return !dialog_ || !dialog_->wasCanceled();
}

void TLoadDialog::Open() {
  dialog_ = std::make_unique<QProgressDialog>(QString(), QObject::tr("Cancel"), 0, kSteps, parent_);
  auto* label = new QLabel(QObject::tr("Reading %1...").arg(ShownFileName(fileName_)));
  label->setTextFormat(Qt::PlainText);  // whatever a file may be called
  dialog_->setLabel(label);
  dialog_->setWindowTitle(QStringLiteral("Velmora Animator"));
  dialog_->setWindowModality(Qt::ApplicationModal);
  dialog_->setMinimumDuration(0);
  dialog_->setMinimumWidth(360);
  dialog_->setAutoReset(false);
  dialog_->setAutoClose(false);
  dialog_->show();
}

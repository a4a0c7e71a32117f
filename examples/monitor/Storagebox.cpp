#include "examples/monitor/Storagebox.h"

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <utility>

#include "components/channels/Statsstorage.h"
#include "examples/monitor/Fittinglabel.h"

TStorageBox::TStorageBox(TStatsStorage& storage, QWidget* parent)
    : QGroupBox(tr("Statistics files"), parent), storage_(storage) {
  folder_ = new QLineEdit;
  folder_->setObjectName(QStringLiteral("folder"));
  folder_->setPlaceholderText(tr("Folder"));
  browse_ = new QPushButton(tr("Browse..."));
  toggle_ = new QPushButton;
  toggle_->setObjectName(QStringLiteral("store"));
  state_ = new TFittingLabel(3);
  state_->setObjectName(QStringLiteral("storageState"));
  connect(browse_, &QPushButton::clicked, this, &TStorageBox::Browse);
  connect(toggle_, &QPushButton::clicked, this, &TStorageBox::Toggle);
  connect(&storage, &TStatsStorage::OnStatusChanged, this, &TStorageBox::StatusChanged);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(toggle_);
  buttons->addWidget(browse_);
  auto* all = new QVBoxLayout(this);
  all->addWidget(folder_);
  all->addWidget(state_);
  all->addLayout(buttons);
  ShowState();
}

void TStorageBox::Start(const QString& folder) {
  folder_->setText(folder);
  storage_.SetRootDir(folder);
  failing_ = false;
  storage_.SetActive(true);
  ShowState();
  emit OnEvent(tr("storing into %1").arg(QDir(folder).absolutePath()));
}

void TStorageBox::Stop() {
  storage_.SetActive(false);
  ShowState();
  emit OnEvent(tr("stopped"));
}

/// Each set has a file of its own, and so a status every few seconds. An event is only whether they
/// can be written.
void TStorageBox::StatusChanged() {
  ShowState();
  const bool failing = storage_.GetStatus().startsWith(QStringLiteral("Cannot"));
  if (std::exchange(failing_, failing) != failing) emit OnEvent(storage_.GetStatus());
}

void TStorageBox::Toggle() {
  if (storage_.GetActive()) return Stop();
  if (folder_->text().trimmed().isEmpty()) Browse();
  const QString folder = folder_->text().trimmed();
  if (!folder.isEmpty()) Start(folder);
}

void TStorageBox::Browse() {
  const QString folder =
      QFileDialog::getExistingDirectory(this, tr("Folder for statistics files"), folder_->text());
  if (!folder.isEmpty()) folder_->setText(QDir::toNativeSeparators(folder));
}

void TStorageBox::ShowState() {
  const bool active = storage_.GetActive();
  folder_->setReadOnly(active);
  browse_->setEnabled(!active);
  toggle_->setText(active ? tr("Stop storing") : tr("Start storing"));
  const QString status = storage_.GetStatus();
  if (!active) {
    state_->SetText(tr("Nothing is stored"));
  } else {
    state_->SetText(status.isEmpty() ? tr("The first line comes within 10 s") : status);
  }
}

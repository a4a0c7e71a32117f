#include "viewer/window/Reportdialog.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

TReportDialog::TReportDialog(const QString& text, QWidget* parent) : QDialog(parent), text_(text) {
  constexpr QSize kFirstReport(760, 480);
  setWindowTitle(QStringLiteral("What was in the files"));
  resize(kFirstReport);
  auto* report = new QPlainTextEdit(text, this);
  report->setObjectName(QStringLiteral("Report"));
  report->setReadOnly(true);
  report->setLineWrapMode(QPlainTextEdit::NoWrap);  // its columns stand under each other
  report->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  QPushButton* copy = buttons->addButton(QStringLiteral("Copy"), QDialogButtonBox::ActionRole);
  copy->setObjectName(QStringLiteral("CopyReport"));
  connect(copy, &QPushButton::clicked, this, &TReportDialog::CopyAll);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(report);
  layout->addWidget(buttons);
}

void TReportDialog::CopyAll() { QGuiApplication::clipboard()->setText(text_); }

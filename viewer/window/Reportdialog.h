#pragma once

#include <QDialog>

/// What was found in the files of a job, as a text that can be read, marked and copied. GUI thread
/// only.
class TReportDialog : public QDialog {
  Q_OBJECT

 public:
  /// `text`: plain, of any origin.
  TReportDialog(const QString& text, QWidget* parent);

 public slots:
  void CopyAll();

 private:
  QString text_;
};

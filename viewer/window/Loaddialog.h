#pragma once

#include <QElapsedTimer>
#include <QProgressDialog>
#include <memory>

#include "model/Loadreport.h"

/// Keeps the program alive while a file is read: windows are painted, and after half a second a
/// dialog shows how far the load is and lets the user cancel it. Until then, input waits. GUI
/// thread only.
class TLoadDialog {
 public:
  /// `parent`: not owned. `delayMs`: time before the dialog appears.
  TLoadDialog(QWidget* parent, const QString& fileName, int delayMs = 500);

  /// For the reader; holds no longer than the dialog.
  TLoadProgress Progress();

 private:
  bool Advance(double done);
  void Open();

  QWidget* parent_;
  QString fileName_;
  int delayMs_;
  QElapsedTimer clock_;
  qint64 servedMs_ = 0;  ///< when events were last dealt with
  std::unique_ptr<QProgressDialog> dialog_;
};

#pragma once

#include <QGroupBox>

class QLineEdit;
class QPushButton;
class TFittingLabel;
class TStatsStorage;

/// Starts and stops the storing of statistics into a folder and shows what comes of it. The storage
/// is not owned and outlives the box.
class TStorageBox : public QGroupBox {
  Q_OBJECT

 public:
  explicit TStorageBox(TStatsStorage& storage, QWidget* parent = nullptr);

  /// Stores into a folder from now on; it is made when the first line is written.
  void Start(const QString& folder);
  void Stop();

 signals:
  void OnEvent(const QString& text);

 private:
  void Toggle();
  void Browse();
  void StatusChanged();
  void ShowState();

  TStatsStorage& storage_;
  bool failing_ = false;  ///< the last line could not be written
  QLineEdit* folder_;
  QPushButton* browse_;
  QPushButton* toggle_;
  TFittingLabel* state_;
};

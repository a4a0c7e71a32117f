#pragma once

#include <QDialog>

#include "components/comms/Qlxsettings.h"

class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QSpinBox;

/// Edits all settings of a serial port; they are taken over when the user says OK. The resolution
/// of a connected port stays as it is. GUI thread only.
class TPortDialog : public QDialog {
  Q_OBJECT

 public:
  /// The port is not owned and may go first.
  explicit TPortDialog(TQLXSettings& port, QWidget* parent = nullptr);

  void accept() override;

 private:
  QWidget* DeviceGroup();
  QWidget* LineGroup();
  QWidget* QueueGroup();
  QLayout* TestRow();
  QComboBox* AddChoice(QFormLayout* form, const char* name, const QString& caption,
                       const QStringList& choices);
  QSpinBox* AddSize(QFormLayout* form, const char* name, const QString& caption);

  void ShowSettings();
  /// Into edited_.
  void TakeSettings();
  void ShowDevice();
  void Test();

  QPointer<TQLXSettings> port_;
  TQLXSettings edited_;

  QComboBox* portNum_;
  QLabel* device_;
  QComboBox* resolution_;
  QComboBox* controlQLX_;
  QDoubleSpinBox* sampleRate_;
  QComboBox* baudRate_;
  QComboBox* dataBits_;
  QComboBox* parity_;
  QComboBox* stopBits_;
  QComboBox* controlDTR_;
  QComboBox* controlRTS_;
  QSpinBox* inBufSize_;
  QSpinBox* outBufSize_;
  QLabel* testResult_;
};

/// Runs the dialog on a port. True if the user said OK.
bool RunPortSetupDialog(TQLXSettings& port, QWidget* parent = nullptr);

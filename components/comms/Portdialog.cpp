#include "components/comms/Portdialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <limits>

#include "components/comms/Qlxdriver.h"

TPortDialog::TPortDialog(TQLXSettings& port, QWidget* parent) : QDialog(parent), port_(&port) {
  setWindowTitle(tr("Serial port"));
  edited_.Assign(&port);

  auto* right = new QVBoxLayout;
  right->addWidget(QueueGroup());
  right->addStretch();
  auto* left = new QVBoxLayout;
  left->addWidget(DeviceGroup());
  left->addLayout(right);
  auto* columns = new QHBoxLayout;
  columns->addLayout(left, 1);
  columns->addWidget(LineGroup(), 1);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::accepted, this, &TPortDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* all = new QVBoxLayout(this);
  all->addLayout(columns);
  all->addLayout(TestRow());
  all->addWidget(buttons);
  ShowSettings();
  // A rate with more digits than are shown stays as it is until the user changes it.
  connect(sampleRate_, &QDoubleSpinBox::valueChanged, &edited_, &TQLXSettings::SetQLXSampleRate);
}

void TPortDialog::accept() {
  TakeSettings();
  if (port_) port_->Assign(&edited_);
  QDialog::accept();
}

QComboBox* TPortDialog::AddChoice(QFormLayout* form, const char* name, const QString& caption,
                                  const QStringList& choices) {
  auto* box = new QComboBox;
  box->setObjectName(QLatin1String(name));
  box->addItems(choices);
  form->addRow(caption, box);
  return box;
}

QSpinBox* TPortDialog::AddSize(QFormLayout* form, const char* name, const QString& caption) {
  auto* box = new QSpinBox;
  box->setObjectName(QLatin1String(name));
  box->setRange(0, std::numeric_limits<int>::max());
  box->setSingleStep(100);
  box->setSuffix(tr(" bytes"));
  form->addRow(caption, box);
  return box;
}

QWidget* TPortDialog::DeviceGroup() {
  auto* group = new QGroupBox(tr("Device"));
  auto* form = new QFormLayout(group);
  QStringList ports;
  for (int i = 1; i <= 16; ++i) ports << QStringLiteral("COM%1").arg(i);
  portNum_ = AddChoice(form, "PortNum", tr("Port"), ports);
  device_ = new QLabel;
  device_->setTextFormat(Qt::PlainText);
  device_->setObjectName(QStringLiteral("Device"));
  device_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  form->addRow(QString(), device_);
  connect(portNum_, &QComboBox::currentIndexChanged, this, &TPortDialog::ShowDevice);

  resolution_ = AddChoice(form, "Resolution", tr("Resolution"),
                          {tr("16 bits"), tr("24 bits"), tr("16 bits, older devices")});
  resolution_->setEnabled(!port_->GetConnected());
  if (port_->GetConnected()) resolution_->setToolTip(tr("Fixed while the port is open"));
  controlQLX_ = AddChoice(form, "ControlQLX", tr("Acquisition"), {tr("Streaming"), tr("Polled")});
  sampleRate_ = new QDoubleSpinBox;
  sampleRate_->setObjectName(QStringLiteral("QLXSampleRate"));
  sampleRate_->setLocale(QLocale::c());
  sampleRate_->setRange(40.0, 800.0);
  sampleRate_->setDecimals(3);
  sampleRate_->setSuffix(tr(" Hz"));
  form->addRow(tr("Sample rate"), sampleRate_);
  return group;
}

QWidget* TPortDialog::LineGroup() {
  auto* group = new QGroupBox(tr("Line"));
  auto* form = new QFormLayout(group);
  QStringList rates;
  for (int i = TQLXSettings::brs9600; i <= TQLXSettings::brs115200; ++i) {
    rates << QString::number(QLXBaudRateToInt(static_cast<TQLXSettings::TQLXBaudRate>(i)));
  }
  baudRate_ = AddChoice(form, "BaudRate", tr("Baud rate"), rates);
  dataBits_ = AddChoice(
      form, "DataBits", tr("Data bits"),
      {QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7"), QStringLiteral("8")});
  parity_ = AddChoice(form, "Parity", tr("Parity"),
                      {tr("None"), tr("Odd"), tr("Even"), tr("Mark"), tr("Space")});
  stopBits_ = AddChoice(form, "StopBits", tr("Stop bits"),
                        {QStringLiteral("1"), QStringLiteral("1.5"), QStringLiteral("2")});
  controlDTR_ =
      AddChoice(form, "ControlDTR", tr("DTR line"), {tr("Low"), tr("High"), tr("Handshake")});
  controlRTS_ = AddChoice(form, "ControlRTS", tr("RTS line"),
                          {tr("Low"), tr("High"), tr("Handshake"), tr("High while sending")});
  return group;
}

QWidget* TPortDialog::QueueGroup() {
  auto* group = new QGroupBox(tr("Queues"));
  auto* form = new QFormLayout(group);
  inBufSize_ = AddSize(form, "InBufSize", tr("Input"));
  outBufSize_ = AddSize(form, "OutBufSize", tr("Output"));
  return group;
}

QLayout* TPortDialog::TestRow() {
  auto* row = new QHBoxLayout;
  auto* test = new QPushButton(tr("Test"));
  test->setObjectName(QStringLiteral("Test"));
  test->setAutoDefault(false);
  test->setEnabled(!port_->GetConnected());
  connect(test, &QPushButton::clicked, this, &TPortDialog::Test);
  testResult_ = new QLabel(port_->GetConnected() ? tr("The port is open.") : QString());
  testResult_->setObjectName(QStringLiteral("TestResult"));
  testResult_->setWordWrap(true);
  testResult_->setTextFormat(Qt::PlainText);
  row->addWidget(test);
  row->addWidget(testResult_, 1);
  return row;
}

void TPortDialog::ShowSettings() {
  portNum_->setCurrentText(edited_.GetPortNum());
  resolution_->setCurrentIndex(edited_.GetResolution());
  controlQLX_->setCurrentIndex(edited_.GetControlQLX());
  sampleRate_->setValue(edited_.GetQLXSampleRate());
  baudRate_->setCurrentIndex(edited_.GetBaudRate());
  dataBits_->setCurrentIndex(edited_.GetDataBits());
  parity_->setCurrentIndex(edited_.GetParity());
  stopBits_->setCurrentIndex(edited_.GetStopBits());
  controlDTR_->setCurrentIndex(edited_.GetControlDTR());
  controlRTS_->setCurrentIndex(edited_.GetControlRTS());
  inBufSize_->setValue(edited_.GetInBufSize());
  outBufSize_->setValue(edited_.GetOutBufSize());
  ShowDevice();
}

void TPortDialog::TakeSettings() {
  using T = TQLXSettings;
  edited_.SetPortNum(portNum_->currentText());
  edited_.SetResolution(static_cast<T::TQLXResolution>(resolution_->currentIndex()));
  edited_.SetControlQLX(static_cast<T::TQLXFlowControl>(controlQLX_->currentIndex()));
  edited_.SetBaudRate(static_cast<T::TQLXBaudRate>(baudRate_->currentIndex()));
  edited_.SetDataBits(static_cast<T::TDataBits>(dataBits_->currentIndex()));
  edited_.SetParity(static_cast<T::TParityBits>(parity_->currentIndex()));
  edited_.SetStopBits(static_cast<T::TStopBits>(stopBits_->currentIndex()));
  edited_.SetControlDTR(static_cast<T::TDTRFlowControl>(controlDTR_->currentIndex()));
  edited_.SetControlRTS(static_cast<T::TRTSFlowControl>(controlRTS_->currentIndex()));
  edited_.SetInBufSize(inBufSize_->value());
  edited_.SetOutBufSize(outBufSize_->value());
}

void TPortDialog::ShowDevice() { device_->setText(SystemDevice(portNum_->currentText())); }

void TPortDialog::Test() {
  if (!port_) return;
  TakeSettings();
  testResult_->setText(tr("Asking the device ..."));
  testResult_->repaint();
  testResult_->setText(port_->TryDevice(edited_));
}

bool RunPortSetupDialog(TQLXSettings& port, QWidget* parent) {
  return TPortDialog(port, parent).exec() == QDialog::Accepted;
}

#include "components/panels/Formconnections.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLCDNumber>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMetaMethod>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTextEdit>
#include <QToolBox>

namespace {

struct TPlainMethod {
  const QMetaObject* Class;
  const char* Signature;
};

const TPlainMethod kPlainSignals[] = {
    {&QAbstractButton::staticMetaObject, "clicked()"},
    {&QAbstractButton::staticMetaObject, "clicked(bool)"},
    {&QAbstractButton::staticMetaObject, "pressed()"},
    {&QAbstractButton::staticMetaObject, "released()"},
    {&QAbstractButton::staticMetaObject, "toggled(bool)"},
    {&QGroupBox::staticMetaObject, "clicked()"},
    {&QGroupBox::staticMetaObject, "clicked(bool)"},
    {&QGroupBox::staticMetaObject, "toggled(bool)"},
    {&QSpinBox::staticMetaObject, "valueChanged(int)"},
    {&QDoubleSpinBox::staticMetaObject, "valueChanged(double)"},
    {&QAbstractSpinBox::staticMetaObject, "editingFinished()"},
    {&QAbstractSlider::staticMetaObject, "valueChanged(int)"},
    {&QAbstractSlider::staticMetaObject, "sliderMoved(int)"},
    {&QAbstractSlider::staticMetaObject, "sliderPressed()"},
    {&QAbstractSlider::staticMetaObject, "sliderReleased()"},
    {&QProgressBar::staticMetaObject, "valueChanged(int)"},
    {&QLineEdit::staticMetaObject, "textChanged(QString)"},
    {&QLineEdit::staticMetaObject, "textEdited(QString)"},
    {&QLineEdit::staticMetaObject, "editingFinished()"},
    {&QLineEdit::staticMetaObject, "returnPressed()"},
    {&QComboBox::staticMetaObject, "activated(int)"},
    {&QComboBox::staticMetaObject, "currentIndexChanged(int)"},
    {&QComboBox::staticMetaObject, "currentTextChanged(QString)"},
    {&QListWidget::staticMetaObject, "currentRowChanged(int)"},
    {&QListWidget::staticMetaObject, "currentTextChanged(QString)"},
    {&QTabWidget::staticMetaObject, "currentChanged(int)"},
    {&QStackedWidget::staticMetaObject, "currentChanged(int)"},
    {&QToolBox::staticMetaObject, "currentChanged(int)"},
};

const TPlainMethod kPlainSlots[] = {
    {&QWidget::staticMetaObject, "setEnabled(bool)"},
    {&QWidget::staticMetaObject, "setDisabled(bool)"},
    {&QAbstractButton::staticMetaObject, "setChecked(bool)"},
    {&QAbstractButton::staticMetaObject, "toggle()"},
    {&QGroupBox::staticMetaObject, "setChecked(bool)"},
    {&QSpinBox::staticMetaObject, "setValue(int)"},
    {&QDoubleSpinBox::staticMetaObject, "setValue(double)"},
    {&QAbstractSlider::staticMetaObject, "setValue(int)"},
    {&QProgressBar::staticMetaObject, "setValue(int)"},
    {&QProgressBar::staticMetaObject, "reset()"},
    {&QLCDNumber::staticMetaObject, "display(int)"},
    {&QLCDNumber::staticMetaObject, "display(double)"},
    {&QLCDNumber::staticMetaObject, "display(QString)"},
    {&QLabel::staticMetaObject, "setText(QString)"},
    {&QLabel::staticMetaObject, "setNum(int)"},
    {&QLabel::staticMetaObject, "setNum(double)"},
    {&QLabel::staticMetaObject, "clear()"},
    {&QLineEdit::staticMetaObject, "setText(QString)"},
    {&QLineEdit::staticMetaObject, "clear()"},
    {&QPlainTextEdit::staticMetaObject, "setPlainText(QString)"},
    {&QPlainTextEdit::staticMetaObject, "clear()"},
    {&QTextEdit::staticMetaObject, "setPlainText(QString)"},
    {&QTextEdit::staticMetaObject, "clear()"},
    {&QListWidget::staticMetaObject, "clear()"},
    {&QComboBox::staticMetaObject, "setCurrentIndex(int)"},
    {&QComboBox::staticMetaObject, "setCurrentText(QString)"},
    {&QTabWidget::staticMetaObject, "setCurrentIndex(int)"},
    {&QStackedWidget::staticMetaObject, "setCurrentIndex(int)"},
    {&QToolBox::staticMetaObject, "setCurrentIndex(int)"},
};

/// Whether a class of the components, and not the toolkit's below them, declares the method.
bool IsOwnMethod(const QMetaObject& meta, const QMetaMethod& method) {
  const QMetaObject* base = &meta;
  while (base && base->className()[0] != 'T') base = base->superClass();
  const QMetaObject* toolkit = base;
  while (toolkit && toolkit->className()[0] != 'Q') toolkit = toolkit->superClass();
  return base && toolkit && method.methodIndex() >= toolkit->methodCount();
}

template <std::size_t kCount>
bool IsPlainMethod(const QMetaObject& meta, const QMetaMethod& method,
                   const TPlainMethod (&known)[kCount]) {
  const QByteArray signature = method.methodSignature();
  return std::ranges::any_of(known, [&](const TPlainMethod& plain) {
    return meta.inherits(plain.Class) && signature == plain.Signature;
  });
}

bool IsPublished(const QMetaObject& meta, const QMetaMethod& method, bool isSignal) {
  const auto type = isSignal ? QMetaMethod::Signal : QMetaMethod::Slot;
  if (method.methodType() != type || method.access() != QMetaMethod::Public) return false;
  if (IsOwnMethod(meta, method)) return true;
  const bool isComponent = meta.className()[0] == 'T';
  return isSignal ? !isComponent && IsPlainMethod(meta, method, kPlainSignals)
                  : !isComponent && IsPlainMethod(meta, method, kPlainSlots);
}

}  // namespace

/// What a signal of a panel has set off.
struct TFormConnections::TChain {
  static constexpr int kMaxDepth = 100;
  static constexpr int kMaxCalls = TFormFile::kMaxConnections;

  std::function<void(const TFormFile::TConnection&)> onCircle;
  int depth = 0;  ///< relays on the stack
  int calls = 0;  ///< since the outermost of them began
};

/// Stands between a signal and a slot. Belongs to the sender.
class TFormConnections::TRelay : public QObject {
 public:
  TRelay(QObject* sender, QObject* receiver, int slot, TFormFile::TConnection wanted,
         std::shared_ptr<TChain> chain)
      : QObject(sender),
        receiver_(receiver),
        slot_(slot),
        wanted_(std::move(wanted)),
        chain_(std::move(chain)) {}

  /// The method of this class that is called by the signal; it has no others.
  static int Method() { return QObject::staticMetaObject.methodCount(); }

  int qt_metacall(QMetaObject::Call call, int id, void** arguments) override {
    id = QObject::qt_metacall(call, id, arguments);
    if (id != 0 || call != QMetaObject::InvokeMetaMethod) return id;
    Pass(arguments);
    return -1;
  }

 private:
  /// Two controls that follow each other may correct each other once.
  static constexpr int kMaxRunning = 2;

  void Pass(void** arguments) {
    if (!receiver_ || isOut_) return;
    const std::shared_ptr<TChain> chain = chain_;
    if (running_ >= kMaxRunning || chain->depth >= TChain::kMaxDepth ||
        chain->calls >= TChain::kMaxCalls) {
      isOut_ = true;
      if (chain->onCircle) chain->onCircle(wanted_);
      return;
    }
    const QPointer<TRelay> self(this);
    ++running_;
    ++chain->depth;
    ++chain->calls;
    QMetaObject::metacall(receiver_, QMetaObject::InvokeMetaMethod, slot_, arguments);
    if (--chain->depth == 0) chain->calls = 0;
    if (self) --running_;
  }

  const QPointer<QObject> receiver_;
  const int slot_;
  const TFormFile::TConnection wanted_;
  const std::shared_ptr<TChain> chain_;
  int running_ = 0;     ///< calls on the stack
  bool isOut_ = false;  ///< taken out
};

TFormConnections::TFormConnections() : chain_(std::make_shared<TChain>()) {
  chain_->onCircle = [this](const TFormFile::TConnection& connection) {
    if (OnCircle) OnCircle(connection);
  };
}

TFormConnections::~TFormConnections() { chain_->onCircle = nullptr; }

QString TFormConnections::Connect(QObject* sender, QObject* receiver,
                                  const TFormFile::TConnection& wanted) {
  if (!sender || !receiver) {
    return QStringLiteral("there is no object %1").arg(sender ? wanted.Receiver : wanted.Sender);
  }
  const auto normalized = [](const QString& signature) {
    return QMetaObject::normalizedSignature(signature.toLatin1().constData());
  };
  const QMetaObject& from = *sender->metaObject();
  const QMetaObject& to = *receiver->metaObject();
  const QMetaMethod signal = from.method(from.indexOfSignal(normalized(wanted.Signal)));
  const QMetaMethod slot = to.method(to.indexOfMethod(normalized(wanted.Slot)));
  const auto lacks = [](const QMetaObject& meta, const char* what, const QString& name) {
    return QStringLiteral("%1 has no %2 %3").arg(meta.className(), what, name);
  };
  if (!signal.isValid()) return lacks(from, "signal", wanted.Signal);
  if (!slot.isValid()) return lacks(to, "slot", wanted.Slot);
  if (!IsPublished(from, signal, true)) {
    return QStringLiteral("a form may not connect the signal %1").arg(wanted.Signal);
  }
  if (!IsPublished(to, slot, false)) {
    return QStringLiteral("a form may not connect to %1").arg(wanted.Slot);
  }
  if (!QMetaObject::checkConnectArgs(signal, slot)) {
    return QStringLiteral("%1 does not fit %2").arg(wanted.Slot, wanted.Signal);
  }
  // What comes from a device or a server is text, not a picture or a link.
  auto* label = qobject_cast<QLabel*>(receiver);
  if (label && slot.name() == "setText") label->setTextFormat(Qt::PlainText);
  auto* relay = new TRelay(sender, receiver, slot.methodIndex(), wanted, chain_);
  QMetaObject::connect(sender, signal.methodIndex(), relay, TRelay::Method(), Qt::DirectConnection);
  return {};
}

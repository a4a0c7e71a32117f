#include "model/Ending.h"

#include <QGuiApplication>
#include <QPointer>

#include "model/Message.h"

TEnding& TEnding::Instance() {
  static QPointer<TEnding> instance;
  if (!instance) instance = new TEnding(QCoreApplication::instance());
  return *instance;
}

TEnding::TEnding(QObject* parent) : QObject(parent) {
  const auto* application = qobject_cast<QGuiApplication*>(parent);
  if (!application) return;
  for (const auto request :
       {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest}) {
    connect(application, request, this, &TEnding::Keep, Qt::DirectConnection);
  }
}

void TEnding::Keep() { emit OnKeep(this); }

void TEnding::End() {
  constexpr int kAgainMs = 100;
  SetMessageSink({});
  Keep();
  QCoreApplication::exit();
  // A loop may begin only now: the program has still been loading, or a dialog follows another.
  startTimer(kAgainMs);
}

void TEnding::timerEvent(QTimerEvent* event) {
  Q_UNUSED(event)
  QCoreApplication::exit();
}

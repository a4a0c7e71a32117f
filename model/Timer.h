#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

#include "model/Datetime.h"

/// An event that one method of one object handles, comparable so that a setter can tell a new
/// handler from the old one. The object is not owned. Copies share the handler and allocate
/// nothing.
class TNotifyEvent {
 public:
  TNotifyEvent() = default;
  template <class T>
  TNotifyEvent(T* object, void (T::*method)(QObject*))
      : handler_(std::make_shared<THandler<T>>(object, method)) {}

  explicit operator bool() const { return handler_ != nullptr; }
  void operator()(QObject* sender) const { handler_->Call(sender); }

  friend bool operator==(const TNotifyEvent& a, const TNotifyEvent& b) {
    return a.handler_ == b.handler_ || (a.handler_ && b.handler_ && a.handler_->Same(*b.handler_));
  }

 private:
  struct TAnyHandler {
    virtual ~TAnyHandler() = default;
    virtual void Call(QObject* sender) const = 0;
    virtual bool Same(const TAnyHandler& other) const = 0;
  };
  template <class T>
  struct THandler final : TAnyHandler {
    THandler(T* o, void (T::*m)(QObject*)) : object(o), method(m) {}
    void Call(QObject* sender) const override { (object->*method)(sender); }
    bool Same(const TAnyHandler& other) const override {
      const auto* same = dynamic_cast<const THandler*>(&other);
      return same && same->object == object && same->method == method;
    }
    T* object;
    void (T::*method)(QObject*);
  };

  std::shared_ptr<const TAnyHandler> handler_;
};

class TTimerServer;

/// Fires OnTimer every Interval ticks of 10 ms while Enabled. GUI thread only.
class TTimerClient : public QObject {
  Q_OBJECT
  Q_PROPERTY(quint32 Interval READ GetInterval WRITE SetInterval)
  Q_PROPERTY(bool Enabled READ GetEnabled WRITE SetEnabled)

 public:
  /// Joins the shared server's list, which is made when the first client asks for it.
  explicit TTimerClient(QObject* parent = nullptr);
  ~TTimerClient() override;

  /// In ticks of 10 ms. 0 and 1 both fire on every tick.
  quint32 GetInterval() const { return interval_; }
  bool GetEnabled() const { return enabled_; }
  const TNotifyEvent& GetOnTimer() const { return onTimer_; }

  /// Each starts the count of ticks again if the value is new, and does nothing otherwise.
  void SetInterval(quint32 ticks);
  void SetEnabled(bool enabled);
  void SetOnTimer(TNotifyEvent event);

  /// One tick; called by the server. The event may destroy this client.
  void DoTick();

 private:
  quint32 interval_ = 100;
  bool enabled_ = false;
  TNotifyEvent onTimer_;
  quint32 counter_ = 0;  ///< ticks since the last firing
};

/// The one source of ticks: turns a 10 ms system timer into DoTick calls of every client, in the
/// order in which the clients were made. Exists while there is a client, and wakes the program only
/// while one is enabled. GUI thread only.
class TTimerServer : public QObject {
 public:
  /// The running server, or null while there is no client.
  static TTimerServer* Instance();

  /// Serves every client once. A client may come, go or destroy itself meanwhile. An exception ends
  /// this tick and is reported with "Timer server error!". A tick that comes while another is being
  /// served, because an event runs an event loop, is dropped: no client is entered twice. Tests
  /// call this to tick by hand.
  void Timer();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  friend class TTimerClient;
  static void Join(TTimerClient* client);
  static void Leave(TTimerClient* client);
  /// One enabled client more or less.
  void Count(int change);

  std::vector<TTimerClient*> clients_;  ///< not owned
  std::size_t next_ = 0;                ///< index behind the client being served
  bool serving_ = false;
  int enabled_ = 0;  ///< clients that are
  int timer_ = 0;    ///< of the system; 0 while it rests
};

/// A stopwatch with time-stamp strings; it runs from its making. A change of the system's clock
/// does not disturb it. Any thread.
class TStopWatch {
 public:
  TStopWatch() { Start(); }

  /// Takes the current time as the start.
  void Start();

  /// Time since Start as "HHMMSSmmm": hours, minutes, seconds, milliseconds without separators.
  QString GetTimeStr() const;

  /// A given span in the same form; a negative one counts as 0.
  static QString MakeTimeStr(std::int64_t milliseconds);

  /// The current time as "YYYYMMDD HHMMSSmmm".
  QString GetDateTimeStr() const;

  /// A given time in the same form; empty if it is no date of the years 1 to 9999.
  static QString MakeDateTimeStr(TDateTime time);

 private:
  QElapsedTimer clock_;
};

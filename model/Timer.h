#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "model/Datetime.h"

/// An event that one method of one object handles, comparable so that a setter can tell a new
/// handler from the old one. The object is not owned.
class TNotifyEvent {
 public:
  TNotifyEvent() = default;
  template <class T>
  TNotifyEvent(T* object, void (T::*method)(QObject*))
      : object_(object),
        method_(std::make_shared<TMethod<T>>(method)),
        call_([object, method](QObject* sender) { (object->*method)(sender); }) {}

  explicit operator bool() const { return static_cast<bool>(call_); }
  void operator()(QObject* sender) const { call_(sender); }

  friend bool operator==(const TNotifyEvent& a, const TNotifyEvent& b) {
    if (a.object_ != b.object_ || !a.method_ != !b.method_) return false;
    return !a.method_ || a.method_->Same(*b.method_);
  }

 private:
  struct TAnyMethod {
    virtual ~TAnyMethod() = default;
    virtual bool Same(const TAnyMethod& other) const = 0;
  };
  template <class T>
  struct TMethod final : TAnyMethod {
    explicit TMethod(void (T::*m)(QObject*)) : method(m) {}
    bool Same(const TAnyMethod& other) const override {
      const auto* same = dynamic_cast<const TMethod*>(&other);
      return same && same->method == method;
    }
    void (T::*method)(QObject*);
  };

  const void* object_ = nullptr;
  std::shared_ptr<const TAnyMethod> method_;
  std::function<void(QObject*)> call_;
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
  TTimerServer* server_;   ///< shared, not owned
  quint32 counter_ = 0;    ///< ticks since the last firing
};

/// The one source of ticks: turns a 10 ms system timer into DoTick calls of every client, in the
/// order in which the clients were made. Exists while there is a client. GUI thread only.
class TTimerServer : public QObject {
 public:
  /// The running server, or null while there is no client.
  static TTimerServer* Instance();

  /// Serves every client once. A client may come, go or destroy itself meanwhile. An exception ends
  /// this tick and is reported with "Timer server error!". Tests call this to tick by hand.
  void Timer();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  friend class TTimerClient;
  TTimerServer();
  static TTimerServer* Join(TTimerClient* client);
  static void Leave(TTimerClient* client);

  std::vector<TTimerClient*> clients_;  ///< not owned
  std::size_t serving_ = 0;             ///< index of the client being served
};

/// A stopwatch with time-stamp strings.
class TStopWatch {
 public:
  /// Takes the current time as the start.
  void Start();

  /// Time since Start as "HHMMSSmmm": hours, minutes, seconds, milliseconds without separators.
  QString GetTimeStr() const;

  /// The current time as "YYYYMMDD HHMMSSmmm".
  QString GetDateTimeStr() const;

  /// A given time in the same form.
  static QString MakeDateTimeStr(TDateTime time);

 private:
  TDateTime start_ = TDateTime::Now();
};

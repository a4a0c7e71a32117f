#pragma once

#include <bit>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "components/controls/Compbase.h"
#include "components/links/Complist.h"
#include "components/links/Componentref.h"
#include "components/links/Linkclasses.h"
#include "components/links/Propclasses.h"

/// Data controls pass one floating-point value to others without either side knowing the other's
/// class: by subscriptions, by lists of client controls, and by ports that a component embeds.
/// Everything here is for the GUI thread only; workers hand their values over first.

class TLinkableControl;

/// A subscription to the values of linkable controls: a member of the subscriber, entered in a
/// control by its address. It may be entered in several controls and leaves them all when it goes.
class TValueLink {
 public:
  TValueLink() = default;
  explicit TValueLink(std::function<void(double)> onValue) : OnValue(std::move(onValue)) {}
  ~TValueLink();
  TValueLink(const TValueLink&) = delete;
  TValueLink& operator=(const TValueLink&) = delete;

  /// Called with each value that the control notifies; an unset one is skipped. It may unlink
  /// itself and destroy its subscriber or the control.
  std::function<void(double)> OnValue;

 private:
  friend class TLinkableControl;
  std::vector<TLinkableControl*> controls_;  ///< not owned; each clears itself when it goes
};

/// A control with subscribers. They are not owned; destroying the control calls none of them.
///
/// What a value sets off, its cascade, always ends. A control that is notifying already is entered
/// again, so that a subscriber may correct the value it got; a value that it holds already is
/// not new from the third time on, and goes no further. What goes in a circle, or would go on for
/// ever, is cut, see TRun: then the controls only store what they get, and the user is warned, once
/// for each control that begins such a cascade.
class TLinkableControl : public TIconControl {
  Q_OBJECT

 public:
  using TIconControl::TIconControl;
  ~TLinkableControl() override;

  /// Calls the subscribers in the order in which they came, here with 0.0.
  virtual void NotifyClients();
  /// Enters a subscription; a second time changes nothing. `notifyNow` is for descendants that have
  /// a value to start with.
  virtual void AddLink(TValueLink* link, bool notifyNow);
  /// Nothing happens if the control does not hold the link.
  void DeleteLink(TValueLink* link);

  int LinkCount() const;
  bool HasLink(const TValueLink* link) const;

  /// A method of a control that calls others, which may call it again.
  struct TMethod {
    int running = 0;           ///< runs on the stack
    std::uint64_t spread = 0;  ///< of its last run, see TRun
  };

  /// While the control runs one of its methods it can be destroyed by whom it calls. This stands on
  /// the stack of such a method, notices that, and decides whether the cascade has to be cut.
  ///
  /// A value spreads through client lists, and through subscribers that pass it on. Runs of one
  /// method in one spread are repeats: as many as there are roads between two controls, which
  /// double with each control that has two. A subscriber that gives a control a value of its own
  /// begins another spread, and may do so as often as it likes; but while a method runs in itself,
  /// in a circle, every run of a method that has run before is a repeat.
  class TRun {
   public:
    TRun(TLinkableControl& control, TMethod& method);
    ~TRun();
    TRun(const TRun&) = delete;
    TRun& operator=(const TRun&) = delete;

    /// The control has been destroyed: nothing of it may be touched.
    bool IsGone() const { return !control_; }
    /// The method must call nobody: it runs in itself for the third time, with no new value or
    /// within one spread, or the cascade has too many repeats, fills the stack or takes many
    /// seconds.
    bool IsCut(bool isNew = true) const {
      constexpr int kFew = 256;  // runs that are never too much
      const bool isPlain = method_.running <= kMaxRunning && cascade_.runs <= kFew;
      return !isPlain && HasToBeCut(isNew);
    }

    /// On the stack of a subscriber that passes on what it gets.
    class TPassing;
    /// On the stack around one of many values that are given one after the other: its repeats are
    /// counted for themselves.
    class TAlone;

   private:
    friend class TLinkableControl;
    static constexpr int kMaxRunning = 2;
    static constexpr int kMaxRepeats = 1 << 18;
    static constexpr int kMaxRuns = 1 << 28;
#ifdef Q_OS_WIN
    static constexpr std::uintptr_t kMaxStack = 1 << 19;  // of a megabyte
#else
    static constexpr std::uintptr_t kMaxStack = 1 << 22;  // of eight
#endif

    /// A subscriber that waits in an event loop of its own, to ask the user for one, does not hold
    /// the values up that come meanwhile: each begins a cascade.
    struct TCascade {
      const TRun* outermost = nullptr;  ///< of all event loops
      const TRun* first = nullptr;
      int depth = 0;                  ///< runs on the stack
      int runs = 0;                   ///< since it began
      int loopLevel = 0;              ///< of event loops, in which it began
      int circles = 0;                ///< methods on the stack that run in themselves
      int repeats = 0;                ///< since the spread began, or the first circle
      bool passing = false;           ///< the next run belongs to the present spread
      std::uint64_t spread = 0;       ///< the present one
      std::uint64_t firstSpread = 0;  ///< of the cascade
    };
    static TCascade cascade_;
    static std::uint64_t spreads_;

    void BeginCascade();
    void BeginSpread();
    bool HasToBeCut(bool isNew) const;
    bool IsTooMuch() const;
    void Report() const;

    TLinkableControl* control_;  ///< null once it is destroyed
    TMethod& method_;
    TRun* outer_;
    std::optional<TCascade> outerCascade_;  ///< of an outer event loop, if this begins one
    // What holds again when the method has run.
    std::uint64_t spreadBefore_;
    int repeatsBefore_;  ///< if this begins the spread
    bool passingBefore_;
    bool beginsSpread_ = false;
    bool inCircle_;
    bool goesRound_ = false;  ///< the spread has come back to the method, and once more
  };

 protected:
  /// Calls each subscriber with `value` as it is at that moment, then Notified. Who subscribes
  /// meanwhile is not called, who leaves is not called any more.
  void CallLinks(const double& value, bool isNew = false);
  /// All subscribers have been called.
  virtual void Notified() {}

 private:
  friend class TValueLink;
  void Forget(const TValueLink* link);

  std::vector<TValueLink*> links_;  ///< null: left while the control was notifying
  TMethod notifying_;               ///< CallLinks
  TRun* innermost_ = nullptr;
  bool cutIsReported_ = false;
};

class TLinkableControl::TRun::TPassing {
 public:
  TPassing() : before_(std::exchange(cascade_.passing, cascade_.depth > 0)) {}
  ~TPassing() { cascade_.passing = before_; }
  TPassing(const TPassing&) = delete;
  TPassing& operator=(const TPassing&) = delete;

 private:
  const bool before_;
};

class TLinkableControl::TRun::TAlone {
 public:
  TAlone();
  ~TAlone();
  TAlone(const TAlone&) = delete;
  TAlone& operator=(const TAlone&) = delete;

 private:
  const TCascade before_ = cascade_;
};

/// A control that holds a value with its time, and notifies its subscribers of every N-th value.
class TDataControl : public TLinkableControl {
  Q_OBJECT

 public:
  explicit TDataControl(QWidget* parent = nullptr) : TLinkableControl(parent) {}

  virtual double GetValue() const { return value_; }
  /// Takes a value. Values that come while the control notifies of an earlier one are taken too,
  /// within the cascade of that one.
  virtual void SetValue(double value);
  /// Stores the time, in days since 30 December 1899, and then takes the value.
  void SetTimeAndValue(double time, double value);
  double GetTime() const { return time_; }

  /// Every how many values the subscribers are notified. Initially 1.
  int GetInterval() const { return interval_; }
  /// Below 1 ignored; a new interval starts the count again.
  virtual void SetInterval(int interval);

  /// Calls each subscriber with the value, then fires OnChange.
  void NotifyClients() override;
  /// With `notifyNow` the new subscriber gets the present value at once.
  void AddLink(TValueLink* link, bool notifyNow) override;

  /// The value as a function, for those who pull it: a record with an address of its own that lives
  /// as long as the control.
  const std::function<double()>& ValueReader() const { return reader_; }

 signals:
  /// The subscribers have been notified of a value.
  void OnChange(QObject* sender);

 protected:
  /// Counts a value; true for every Interval-th.
  bool CanNotify();
  /// Stores a value and does nothing else, for a descendant that notifies of it later or not at
  /// all.
  void HoldValue(double value) {
    isNew_ |= IsNew(value);
    value_ = value;
  }
  /// Whether it is another value than the present one, a NaN too.
  bool IsNew(double value) const {
    return std::bit_cast<std::uint64_t>(value) != std::bit_cast<std::uint64_t>(value_);
  }
  void Notified() override { emit OnChange(this); }

 private:
  double value_ = 0.0;
  double time_ = 0.0;
  int interval_ = 1;
  int counter_ = 0;     ///< values since the last notification
  bool isNew_ = false;  ///< the subscribers have not been notified of the value yet
  std::function<double()> reader_ = [this] { return GetValue(); };
};

/// A data control that passes each value on to the data controls in its list, and shows it as a
/// slider of a graph.
class TServerDataControl : public TDataControl {
  Q_OBJECT
  Q_PROPERTY(TKorvalCompList* ClientControls READ GetClientControls WRITE SetClientControls)
  Q_PROPERTY(TSliderLink* SliderLink READ GetSliderLink WRITE SetSliderLink)

 public:
  explicit TServerDataControl(QWidget* parent = nullptr);
  ~TServerDataControl() override;

  /// Data controls only. A component that would close a circle is refused with a message; the
  /// control itself is not, its values then end after one round.
  TKorvalCompList* GetClientControls() { return &clients_; }
  /// Copies the list; null changes nothing.
  void SetClientControls(const TKorvalCompList* list) { clients_.Assign(list); }

  TSliderLink* GetSliderLink() { return &slider_; }
  void SetSliderLink(const TSliderLink* link) { slider_.Assign(link); }

  /// Notifies the subscribers as every data control does, gives the value to each client in list
  /// order, whatever the interval says, and moves the slider if it is in a graph.
  void SetValue(double value) override;

  /// Whether the values of this control reach `target` through client lists.
  bool PointsTo(const TServerDataControl* target) const;

  void Loaded() override;

 protected:
  /// All that SetValue does; false if the control was destroyed on the way.
  [[nodiscard]] bool TakeValue(double value);
  /// Asked before each change of ClientControls.
  void ClientsChanged(QObject* item, TListAction action, bool& allow);

 private:
  void GiveToClients(double value, const TRun& run);

  TKorvalCompList clients_{this, &TDataControl::staticMetaObject};
  TSliderLink slider_{this};
  TMethod taking_;  ///< TakeValue
  bool destroying_ = false;
};

/// A port that receives a value: a member of a component that listens to a data control.
class TInputData : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(double Value READ GetValue WRITE SetValue)
  Q_PROPERTY(QString DataControl READ GetDataControlName WRITE SetDataControlName)

 public:
  explicit TInputData(QObject* owner, double value = 0.0);

  double GetValue() const { return value_; }
  /// Takes a value unless OnValidate refuses it, and fires OnChange, for an equal value too.
  void SetValue(double value);

  /// The control it listens to; null for none. Not owned, may go first.
  TServerDataControl* GetDataControl() const { return control_.Get(); }
  /// A new control gives its present value at once.
  void SetDataControl(TServerDataControl* control);
  /// The control's object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetDataControlName() const { return control_.GetName(); }
  void SetDataControlName(const QString& name) { control_.SetName(name); }
  /// To be called once the form of the owner is complete. The control that is found gives its
  /// present value at once.
  void Loaded();

  /// Says whether a value may be taken; unset takes all.
  std::function<bool(double value)> OnValidate;

  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  void Listen();

  double value_;
  TComponentRef<TServerDataControl> control_;
  TValueLink link_{[this](double value) { SetValue(value); }};
};

/// A port that gives values: a member of a component that feeds a data control.
class TOutputData : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(double Value READ GetValue WRITE SetValue)
  Q_PROPERTY(QString DataControl READ GetDataControlName WRITE SetDataControlName)

 public:
  explicit TOutputData(QObject* owner);

  double GetValue() const { return value_; }
  /// Stores the value and gives it to the control, but not while the owner is being loaded.
  void SetValue(double value);

  /// The control that gets the values; null for none. Not owned, may go first.
  TDataControl* GetDataControl() const { return control_.Get(); }
  /// A new control gets the present value at once, but not while the owner is being loaded.
  void SetDataControl(TDataControl* control);
  /// The control's object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetDataControlName() const { return control_.GetName(); }
  void SetDataControlName(const QString& name) { control_.SetName(name); }
  /// To be called once the form of the owner is complete. The control that is found gets the next
  /// value, not the present one.
  void Loaded() { control_.Loaded(); }

  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  double value_ = 0.0;
  TComponentRef<TDataControl> control_;
};

#pragma once

#include <functional>
#include <vector>

#include "components/controls/Compbase.h"
#include "components/links/Complist.h"
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
/// once more, so that a subscriber may correct the value it was told, and then only stores what it
/// gets; so does every control when 256 calls wait for each other or the cascade has made 262,144
/// calls, as controls that all point at each other would for ever.
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

  /// While the control runs one of its methods it can be destroyed by whom it calls. This stands on
  /// the stack of such a method, notices that, and tells whether the cascade has to be cut.
  class TRun {
   public:
    /// `running` counts the runs of one method of the control.
    TRun(TLinkableControl& control, int& running);
    ~TRun();
    TRun(const TRun&) = delete;
    TRun& operator=(const TRun&) = delete;

    /// The control has been destroyed: nothing of it may be touched.
    bool IsGone() const { return !control_; }
    /// The method must call nobody: it runs in itself too often, or the cascade is too deep or too
    /// long.
    bool IsCut() const;

   private:
    friend class TLinkableControl;
    static constexpr int kMaxReentry = 2;
    static constexpr int kMaxDepth = 256;
    static constexpr int kMaxRuns = 1 << 18;

    /// A subscriber that waits in an event loop of its own, to ask the user for one, does not hold
    /// the values up that come meanwhile: each begins a cascade.
    struct TCascade {
      int depth = 0;      ///< runs on the stack
      int runs = 0;       ///< runs since it began
      int loopLevel = 0;  ///< of event loops, in which it began
    };
    static TCascade cascade_;

    TLinkableControl* control_;  ///< null once it is destroyed
    int& running_;
    TRun* outer_;
    const TCascade outerCascade_ = cascade_;
  };

 protected:
  /// Calls each subscriber with `value` as it is at that moment, then Notified. Who subscribes
  /// meanwhile is not called, who leaves is not called any more.
  void CallLinks(const double& value);
  /// All subscribers have been called.
  virtual void Notified() {}

 private:
  friend class TValueLink;
  void Forget(const TValueLink* link);

  std::vector<TValueLink*> links_;  ///< null: left while the control was notifying
  int notifying_ = 0;               ///< runs of CallLinks on the stack
  TRun* innermost_ = nullptr;
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
  /// With `notifyNow` the new subscriber is told the present value at once.
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
  void HoldValue(double value) { value_ = value; }
  void Notified() override { emit OnChange(this); }

 private:
  double value_ = 0.0;
  double time_ = 0.0;
  int interval_ = 1;
  int counter_ = 0;  ///< values since the last notification
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
  int taking_ = 0;  ///< runs of TakeValue on the stack
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
  TServerDataControl* GetDataControl() const;
  /// A new control gives its present value at once.
  void SetDataControl(TServerDataControl* control);
  /// The control's object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetDataControlName() const { return control_.GetNames().value(0); }
  void SetDataControlName(const QString& name);
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
  TKorvalCompList control_;  ///< one at most
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
  TDataControl* GetDataControl() const;
  /// A new control gets the present value at once, but not while the owner is being loaded.
  void SetDataControl(TDataControl* control);
  /// The control's object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetDataControlName() const { return control_.GetNames().value(0); }
  void SetDataControlName(const QString& name);
  /// To be called once the form of the owner is complete. The control that is found gets the next
  /// value, not the present one.
  void Loaded() { control_.GetComponentsByNames(); }

  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  double value_ = 0.0;
  TKorvalCompList control_;  ///< one at most
};

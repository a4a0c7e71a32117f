#pragma once

#include <QPointer>
#include <memory>

#include "components/controls/Compbase.h"
#include "components/links/Complist.h"
#include "components/links/Synchronizer.h"

class TDataControl;
class TDataThread;

/// A component that makes values while it is active and deals them to the data controls of its list
/// in turn. Values that nobody is there to take are dropped.
class TCustomDataProvider : public TStateControl {
  Q_OBJECT

 public:
  enum TReadMode : int {
    rmUntilEnd,         ///< stops at the end of the data
    rmReadPage,         ///< stops after PageSize values
    rmContinuous,       ///< begins again at the end of the data
    rmUntilFileListEnd  ///< of a file reader with a list: stops after its last file
  };
  Q_ENUM(TReadMode)

 private:
  Q_PROPERTY(TKorvalCompList* ClientControls READ GetClientControls WRITE SetClientControls)
  Q_PROPERTY(int PageSize READ GetPageSize WRITE SetPageSize)
  Q_PROPERTY(bool Active READ IsSwitchedOn WRITE SetActive)

 public:
  explicit TCustomDataProvider(QWidget* parent = nullptr);

  TReadMode GetReadMode() const { return readMode_; }
  /// rmReadPage begins a page.
  void SetReadMode(TReadMode mode);

  /// Data controls; each value goes to the next of them. Not owned.
  TKorvalCompList* GetClientControls() { return &clients_; }
  /// Copies the list and starts from the beginning, as Reset does; null changes nothing.
  void SetClientControls(const TKorvalCompList* list);

  /// Values of a page. Initially 100; below 1 ignored.
  int GetPageSize() const { return pageSize_; }
  void SetPageSize(int size);

  /// What forms store: until the form is complete, whether the provider will start then.
  bool IsSwitchedOn() const { return IsWaiting() ? startWhenLoaded_ : GetActive(); }

  /// Starts from the beginning: the next value goes to the first client. Descendants go back to the
  /// beginning of their data; they come here at its end, too, and stop if that is the mode.
  virtual void Reset();

  void Loaded() override;
  void Started() override;

 public slots:
  /// While a form is being read, or a provider that wants something is at rest, the switch is only
  /// remembered; Loaded or Started throws it.
  void SetActive(bool active) override;

 protected:
  /// The client whose turn it is, or null; the turn passes on.
  TDataControl* NextControl();
  /// The client that had its turn last; -1 if none had it yet.
  int GetClientIndex() const { return clientIndex_; }

  /// A value is being delivered: counts it, and deactivates the provider at the end of a page.
  virtual void UpdateData();

  /// As SetActive(false), but leaves alone what a form that is being read has said.
  void Stop();

  /// Runs `change` while the provider is inactive and then restores Active. Listeners may destroy
  /// the provider at both switches.
  template <class TChange>
  void WhileInactive(TChange change);

 private:
  TReadMode readMode_ = rmUntilEnd;
  TKorvalCompList clients_;
  int pageSize_ = 100;
  int pageCount_ = 0;
  int clientIndex_ = -1;
  bool startWhenLoaded_ = false;
};

template <class TChange>
void TCustomDataProvider::WhileInactive(TChange change) {
  const QPointer<TCustomDataProvider> self(this);
  const bool wasActive = GetActive();
  if (wasActive) SetActive(false);
  if (self) change();
  if (self && wasActive) SetActive(true);
}

/// A data provider whose values are made by a worker thread. They are delivered on the GUI thread,
/// a few milliseconds long in each turn of its event loop: each with its whole cascade before the
/// next is taken, and none once the provider is inactive. Then the one that would have been next
/// comes first when the provider is active again.
///
/// Everything may be done to a provider, and it may be destroyed, from its clients' notifications.
class TThreadProvider : public TCustomDataProvider {
  Q_OBJECT

 public:
  ~TThreadProvider() override;

  void SetActive(bool active) override;

  /// What failed last since the provider was activated; empty for nothing.
  const QString& GetErrorText() const { return errorText_; }

 signals:
  /// Something failed; an active provider has been deactivated for it.
  void OnError(QObject* sender, const QString& text);

 protected:
  using TAnswer = TSynchronizer::TAnswer;

  TThreadProvider(std::unique_ptr<TDataThread> thread, QWidget* parent);

  TDataThread& Thread() { return *thread_; }
  const TDataThread& Thread() const { return *thread_; }

  /// Delivers the value that was taken from the thread.
  void UpdateData() override;
  /// Whether the next value may be delivered yet.
  virtual bool MayDeliver() { return true; }
  /// Before and after a value is delivered.
  virtual void ValueTaken() {}
  virtual void ValueDelivered() {}
  /// Gives the thread work that follows the values delivered so far; or Again, to be asked once
  /// more in a later turn of the event loop. The provider is active. It may be inactive or gone
  /// afterwards.
  virtual TAnswer NextWork() = 0;

  void Report(const QString& error);
  /// Reports an error and deactivates the provider.
  void Fail(const QString& error);

 private:
  TAnswer TakeValues();
  TAnswer DeliverValues();

  std::unique_ptr<TDataThread> thread_;
  QString errorText_;
};

#pragma once

#include <QPointer>

#include "components/comms/Qlxclient.h"
#include "components/comms/Qlxminicom.h"
#include "components/comms/Qlxport.h"

/// Takes rows from a serial measuring device into one channel set. Its log holds each row as a
/// package for that set, so that a file client can play it again.
class TQLXMasterClient : public TQLXClient {
  Q_OBJECT
  Q_PROPERTY(TClick* MiniCom READ GetMiniCom WRITE SetMiniCom)
  Q_PROPERTY(TQLXPort* Port READ GetPort WRITE SetPort)
  Q_PROPERTY(TSelectedCollItem* ChSet READ GetChSet WRITE SetChSet)

 public:
  /// `makeDriver` and `time` are for the port.
  explicit TQLXMasterClient(QWidget* parent = nullptr, TDriverFactory makeDriver = MakeSystemDriver,
                            TTimeSource time = {});
  ~TQLXMasterClient() override;

  /// Opens the serial console.
  TClick* GetMiniCom() { return &miniCom_; }
  void SetMiniCom(const TClick* click) { miniCom_.Assign(click); }
  TQLXPort* GetPort() { return &port_; }
  void SetPort(const TQLXPort* port) { port_.Assign(port); }
  /// The set that takes the rows, by its label, among the sets of the channel source.
  TSelectedCollItem* GetChSet() { return &chSet_; }
  void SetChSet(const TSelectedCollItem* selection);

  void AddWishes(TWishes& wishes) const override;

  /// True while the port is open.
  bool GetActive() const override { return port_.GetConnected(); }
  QString GetSkippedText() const override;
  bool IsNoisy() const override { return port_.GetAutoRun() && port_.IsNoisy(); }

 protected:
  /// Starts the device; blocks for about half a second.
  void Open() override;
  void Close() override;
  void SourceChanged() override;

 private:
  void PortOpened(QObject* sender);
  void PortClosed(QObject* sender);
  void PortData(const double* values, int count);
  void ClockJumped(double seconds);
  QString ConnectedText() const;
  QString DisconnectedText() const;
  void ShowConnected();
  void ShowSkipped(QObject* sender);
  void ShowConsole();

  TClick miniCom_{this};
  TSelectedCollItem chSet_{this};
  bool opening_ = false;    ///< the port opens and closes on the way
  QString shownConnected_;  ///< ConnectedText as it was shown last
  TTimerClient showSkipped_;
  QPointer<TQLXMiniCom> console_;  ///< a child of this
  TQLXPort port_;
};

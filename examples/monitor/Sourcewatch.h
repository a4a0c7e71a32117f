#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTime>
#include <deque>
#include <memory>
#include <vector>

#include "components/channels/Channelset.h"
#include "components/comms/Qlxclient.h"

/// Says in words how a client of a source stands: whether it is connected, how many rows come, and
/// why none do. Nothing here runs per row; whoever shows the texts calls Look a few times a second.
/// The client is not owned and outlives the watch. GUI thread only.
class TSourceWatch : public QObject {
  Q_OBJECT

 public:
  enum TState { kNotConnected, kConnected, kReceiving };

  TSourceWatch(TQLXClient& client, const QString& name, QObject* parent);

  /// Counts the rows of a set, block by block.
  void Follow(TChannelSet& set);
  /// Brings state and texts up to date.
  void Look();

  TState GetState() const { return state_; }
  /// "Not connected", "Connected", "Only noise comes" or "Receiving 100 rows/s".
  QString StateText() const;
  /// Why it is not connected, for how long no row has come, or how many have, and what was skipped.
  QString DetailText() const;
  /// Where the source is: a path or an address.
  const QString& Name() const { return name_; }

  /// Since the last row that was more than noise, or since the connection was made.
  qint64 SilentMs() const;
  /// Closes the client, which then connects again by itself. That is no event until it succeeds.
  void Reopen();

  bool IsWanted() const { return client_.GetAutoConnect(); }
  /// Whether the client is to be connected; it then tries until it is.
  void SetWanted(bool wanted);

  /// Why there is no connection.
  void SetReason(const QString& reason);

 signals:
  /// Something has happened that the user wants to know.
  void OnEvent(const QString& text);

 private:
  struct TMark {
    qint64 ms;
    qint64 rows;
  };

  void ActiveChanged();
  void StatusChanged();
  void TakeRows();
  void MeasureRate();
  QString RowsText() const;

  TQLXClient& client_;
  QString name_;
  std::vector<std::unique_ptr<TDataClient>> clients_;
  TState state_ = kNotConnected;
  QString reason_;
  bool reopening_ = false;

  QElapsedTimer clock_;
  QTime since_;              ///< time of day at which the connection was made
  qint64 connectedMs_ = 0;   ///< the same by the clock
  qint64 rowMs_ = -1;        ///< when rows were last seen; -1 for never
  qint64 rows_ = 0;          ///< that have come since the connection was made
  qint64 rowsSeen_ = 0;      ///< of them, at the last Look
  std::deque<TMark> marks_;  ///< the rows of the last seconds
  double rate_ = 0.0;        ///< rows per second
};

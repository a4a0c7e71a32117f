#pragma once

#include <QWidget>
#include <vector>

#include "examples/monitor/Monitoroptions.h"
#include "model/Timer.h"

class QLabel;
class QPlainTextEdit;
class TChannelSet;
class TChannelSource;
class TChannelTable;
class THistoryView;
class TQLXMasterClient;
class TQLXXMLClient;
class TSourceBox;
class TSourceWatch;
class TStatsStorage;
class TStorageBox;
class TValueCard;

/// Two live sources in one window:
///
///     serial device  -> "device" -> set "Machine"         -> histories of every channel
///     package server -> "server" -> sets "Mast", "Weather"   -> table, cards, graph, files
///
/// A source that is lost is tried again until it is back, and what has been measured is kept. Rows
/// go into the sets as they come; texts and curves are made anew five times a second, however many
/// rows there are. Components are children and bear these names.
class TMonitorPanel : public QWidget {
  Q_OBJECT

 public:
  explicit TMonitorPanel(const TMonitorOptions& options, QWidget* parent = nullptr);
  ~TMonitorPanel() override;

  TChannelSource& GetSource() { return *source_; }

  QSize sizeHint() const override { return {1200, 800}; }

 private:
  TSourceWatch* MakeDevice(const TMonitorOptions& options);
  TSourceWatch* MakeServer(const TMonitorOptions& options);
  void MakeStorage();
  QLayout* MakeBoxes();
  QLayout* MakeCards();
  QWidget* MakeValues();
  QWidget* MakeEvents();
  void Report(TSourceWatch& watch, const QString& name);

  void Tick(QObject* sender);
  bool IsLive(const TChannelSet& set) const;
  void ShowValues();
  void AddEvent(const QString& from, const QString& text);

  int silenceLimitMs_;
  TChannelSource* source_;
  TQLXMasterClient* device_ = nullptr;
  TQLXXMLClient* server_ = nullptr;
  TStatsStorage* storage_ = nullptr;
  TSourceWatch* deviceWatch_ = nullptr;
  TSourceWatch* serverWatch_ = nullptr;

  TSourceBox* deviceBox_ = nullptr;
  TSourceBox* serverBox_ = nullptr;
  TStorageBox* storageBox_ = nullptr;
  std::vector<TValueCard*> cards_;
  QLabel* interval_ = nullptr;  ///< of the statistics in the table
  TChannelTable* table_ = nullptr;
  THistoryView* history_ = nullptr;
  QPlainTextEdit* events_ = nullptr;
  TTimerClient timer_;
};

#pragma once

#include <QFrame>

class QLabel;
class TChannelSet;
class TChannelSource;
class TLinkedLabel;

/// The mean of a channel's present second in large figures, on a ground that shows its status. A
/// double click on the figures chooses another channel.
class TValueCard : public QFrame {
  Q_OBJECT

 public:
  /// A channel of a source by the labels of its set and its own.
  TValueCard(TChannelSource& source, const QString& set, const QString& channel,
             QWidget* parent = nullptr);

  /// Null for none.
  TChannelSet* Set() const;
  /// Shows how the channel stands. While no rows come, the last value is shown in grey.
  void ShowStatus(bool live);

 private:
  void ChannelChanged();

  QLabel* caption_;
  TLinkedLabel* value_;
};

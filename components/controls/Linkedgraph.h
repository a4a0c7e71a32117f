#pragma once

#include <array>

#include "components/channels/Channellinks.h"
#include "components/controls/Compbase.h"
#include "components/links/Linkclasses.h"
#include "components/links/Objlists.h"

/// "Label [units]", or the label alone: the title of an axis along which the channel is plotted.
/// Empty without a channel.
QString AxisCaptionOf(const TChannel* channel);

/// Plots one channel against another, or against time, in a graph: it collects a pair of values
/// with each delivery of its link that brings something new. Pairs of another channel, or of
/// another of its values, are another curve: it then begins anew. GUI thread only.
class TLinkedGraph : public TIconControl {
  Q_OBJECT
  Q_PROPERTY(TTwoChannelLink* ChannelLink READ GetChannelLink WRITE SetChannelLink)
  Q_PROPERTY(TGraphLink* GraphLink READ GetGraphLink WRITE SetGraphLink)
  /// Pairs kept, 1 to 65536; further ones push the oldest out. 0 keeps as many as there can be.
  Q_PROPERTY(int MaxPoints READ GetMaxPoints WRITE SetMaxPoints)
  /// Whether new pairs are drawn; they are collected all the same.
  Q_PROPERTY(bool Updating READ GetUpdating WRITE SetUpdating)
  Q_PROPERTY(TCoordinateList* Data READ GetData WRITE SetData DESIGNABLE false)

 public:
  explicit TLinkedGraph(QWidget* parent = nullptr);

  /// The first end is X, the second Y; a selected value of svTime is the time.
  TTwoChannelLink* GetChannelLink() { return &link_; }
  void SetChannelLink(const TTwoChannelLink* link) { link_.Assign(link); }
  TGraphLink* GetGraphLink() { return &graphLink_; }
  void SetGraphLink(const TGraphLink* link) { graphLink_.Assign(link); }
  int GetMaxPoints() const { return data_.GetMaxCount(); }
  void SetMaxPoints(int points) { data_.KeepNewest(points); }
  bool GetUpdating() const { return updating_; }
  void SetUpdating(bool updating) { updating_ = updating; }
  /// X and Y, oldest first.
  TCoordinateList* GetData() { return &data_; }
  void SetData(const TCoordinateList* list) { data_.Assign(list); }

  /// Captions of the axes: label and unit of the channels.
  const QString& GetAxisCaptionX() const { return captionX_; }
  const QString& GetAxisCaptionY() const { return captionY_; }

  /// The pair at `index`, which then moves on; false past the last one.
  bool ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const {
    return data_.ProvideGraphData(index, point, extent);
  }

  void Loaded() override;

 private:
  bool HasBoth() const { return link_.SelectedChannel1() && link_.SelectedChannel2(); }
  void GraphChanged();
  void ConfigurationChanged();
  void GetLabels();
  void UpdateValues();
  void OptionsChanged();
  void BeginAnew();

  QString captionX_;
  QString captionY_;
  TTwoChannelLink link_{true, this};
  TGraphLink graphLink_{this};
  TCoordinateList data_{this};
  bool updating_ = true;
  std::array<TStatSet, 2> last_;  ///< what the link delivered last
  std::array<QMetaObject::Connection, 2> channels_;
  std::array<TShownChannel, 2> shown_;
};

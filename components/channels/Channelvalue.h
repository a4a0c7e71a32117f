#pragma once

#include <optional>
#include <vector>

#include "components/channels/Channellinks.h"
#include "components/channels/Variable.h"

/// A variable whose value is that of a channel of a channel source: through it everything that
/// takes values of data controls also takes those of channels. One value comes with each block of
/// the channel's set.
class TChannelValue : public TCustomVariable {
  Q_OBJECT

 public:
  enum TContent : int {
    ctBlock,    ///< mean of the block: with blocks of one row, every measured value
    ctHistory,  ///< what the channel link selects
    ctStatus    ///< 1 normal, 2 warning, 3 alarm, 0 none yet: of the history that the channel link
                ///< selects, and of the shortest if that is longer
  };
  Q_ENUM(TContent)

 private:
  Q_PROPERTY(bool ShowValue READ GetShowValue WRITE SetShowValue)
  Q_PROPERTY(bool ShowName READ GetShowName WRITE SetShowName)
  Q_PROPERTY(TNumberFormat* ValueFormat READ GetValueFormat WRITE SetFormat)
  Q_PROPERTY(TContent Content READ GetContent WRITE SetContent)
  Q_PROPERTY(TOneChannelLink* ChannelLink READ GetChannelLink WRITE SetChannelLink)
  Q_PROPERTY(int NotifyInterval READ GetInterval WRITE SetInterval)
  /// Made of the others, and so no form keeps it.
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption STORED false DESIGNABLE false)

 public:
  explicit TChannelValue(QWidget* parent = nullptr);

  TContent GetContent() const { return content_; }
  void SetContent(TContent content);

  /// When another channel is chosen the value is 0 until that has one; nobody is notified of the 0.
  TOneChannelLink* GetChannelLink() { return &link_; }
  void SetChannelLink(const TOneChannelLink* link) { link_.Assign(link); }

  void Loaded() override;

 protected:
  QString ValueText() const override;

 private:
  void ChannelChosen();
  void OptionsChanged();
  void BlockCame();
  std::optional<double> Present(const TChannel& channel);

  TOneChannelLink link_{false, this};
  TShownChannel shown_;
  TContent content_ = ctBlock;
  std::vector<TStatSet> block_;
};

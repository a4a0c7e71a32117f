#pragma once

#include <QLabel>

#include "components/channels/Channellinks.h"
#include "components/graphing/Utilclasses.h"

/// A text that shows a channel of a channel source: its label, its value, its unit and what the
/// value is. It stands in angle brackets while no channel is linked or the linked one has delivered
/// nothing. A time stamp is shown as a time, without a unit. A text that is too long for its place
/// ends in dots and is shown whole by the tool tip. A double click, and the menu of the right
/// button, choose the channel. GUI thread only.
class TLinkedLabel : public QLabel {
  Q_OBJECT
  Q_PROPERTY(QString Label READ GetLabel WRITE SetLabel)
  Q_PROPERTY(double Value READ GetValue WRITE SetValue)
  Q_PROPERTY(QString Units READ GetUnits WRITE SetUnits)
  Q_PROPERTY(bool ShowLabel READ GetShowLabel WRITE SetShowLabel)
  Q_PROPERTY(bool ShowValue READ GetShowValue WRITE SetShowValue)
  Q_PROPERTY(bool ShowUnits READ GetShowUnits WRITE SetShowUnits)
  Q_PROPERTY(bool ShowDescription READ GetShowDescription WRITE SetShowDescription)
  Q_PROPERTY(TNumberFormat* Format READ GetFormat WRITE SetFormat)
  Q_PROPERTY(TOneChannelLink* ChannelLink READ GetChannelLink WRITE SetChannelLink)

 public:
  explicit TLinkedLabel(QWidget* parent = nullptr);

  /// Label, unit and format are those of the channel once one is linked. Label and unit follow it
  /// when they change.
  const QString& GetLabel() const { return label_; }
  void SetLabel(const QString& label) { Set(label_, label); }
  double GetValue() const { return value_; }
  void SetValue(double value) { Set(value_, value); }
  const QString& GetUnits() const { return units_; }
  void SetUnits(const QString& units) { Set(units_, units); }
  TNumberFormat* GetFormat() { return &format_; }
  void SetFormat(const TNumberFormat* format) { format_.Assign(format); }

  bool GetShowLabel() const { return showLabel_; }
  void SetShowLabel(bool show) { Set(showLabel_, show); }
  bool GetShowValue() const { return showValue_; }
  void SetShowValue(bool show) { Set(showValue_, show); }
  bool GetShowUnits() const { return showUnits_; }
  void SetShowUnits(bool show) { Set(showUnits_, show); }
  bool GetShowDescription() const { return showDescription_; }
  void SetShowDescription(bool show) { Set(showDescription_, show); }

  TOneChannelLink* GetChannelLink() { return &link_; }
  void SetChannelLink(const TOneChannelLink* link) { link_.Assign(link); }
  /// A channel is linked and has delivered since.
  bool IsValid() const { return valid_; }

  /// To be called once the form is complete.
  void Loaded() { link_.Loaded(); }

  /// Builds the text anew.
  void InvalidateLabel();

 signals:
  void OnClick(QObject* sender);

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  bool IsCut() const;
  void ChooseChannel(QPoint at);
  void SelectedChannelChanged();
  void OptionsChanged();
  void TakeNames();
  void UpdateValue();

  template <class T>
  void Set(T& field, const T& value) {
    if (field == value) return;
    field = value;
    InvalidateLabel();
  }

  QString label_;
  QString units_;
  double value_ = 0.0;
  bool showLabel_ = true;
  bool showValue_ = true;
  bool showUnits_ = true;
  bool showDescription_ = false;
  bool valid_ = false;
  TShownChannel shown_;
  QMetaObject::Connection channel_;
  TNumberFormat format_{this};
  TOneChannelLink link_{true, this};
};

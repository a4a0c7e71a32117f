#pragma once

#include "components/channels/Channellinks.h"
#include "components/controls/Imagecontrol.h"
#include "components/controls/Needle.h"

/// Shows a direction with a needle over an optional picture: its own angle, or the value of a
/// channel. Angles are in degrees, clockwise; North is where 0 lies on the control, 0 to the right.
/// GUI thread only.
///
/// Ctrl + double click puts the needle's centre under the mouse, Shift + double click its tip's
/// distance from the centre.
class TCompass : public TCustomImageControl {
  Q_OBJECT
  Q_PROPERTY(TNeedle* Needle READ GetNeedle WRITE SetNeedle)
  Q_CLASSINFO("Measured", "Angle")
  Q_PROPERTY(double Angle READ GetAngle WRITE SetAngle)
  Q_PROPERTY(double North READ GetNorth WRITE SetNorth)
  Q_PROPERTY(QString ImageFile READ GetImageFile WRITE SetImageFile)
  Q_PROPERTY(bool ShowImage READ GetShowImage WRITE SetShowImage)
  Q_PROPERTY(bool Transparent READ GetTransparent WRITE SetTransparent)
  Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)
  Q_PROPERTY(TOneChannelLink* ChannelLink READ GetChannelLink WRITE SetChannelLink)

 public:
  explicit TCompass(QWidget* parent = nullptr);

  TNeedle* GetNeedle() { return &needle_; }
  /// Copies the needle; null changes nothing.
  void SetNeedle(const TNeedle* needle) { needle_.Assign(needle); }

  /// The needle's angle less North.
  double GetAngle() const;
  /// Not finite is ignored.
  void SetAngle(double angleDeg);
  double GetNorth() const { return north_; }
  /// Turns the scale and the needle with it: Angle stays. Not finite is ignored.
  void SetNorth(double northDeg);

  /// The channel whose selected value is taken as the angle, in degrees, at every UpdateInterval.
  /// When another one is chosen, the needle stands at 0 until that has something to show.
  TOneChannelLink* GetChannelLink() { return &link_; }
  void SetChannelLink(const TOneChannelLink* link) { link_.Assign(link); }

  void Loaded() override;

 protected:
  void Paint(QPainter& painter) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  void SelectedChannelChanged();
  void OptionsChanged();
  void UpdateValue();

  TNeedle needle_{this};
  double north_ = 0.0;
  double angle_ = 0.0;  ///< as it was set last; the needle may have been turned since
  TShownChannel shown_;
  TOneChannelLink link_{true, this};
};

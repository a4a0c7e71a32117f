#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <utility>

#include "components/graphing/Serieslist.h"
#include "components/links/Componentref.h"
#include "components/links/Propclasses.h"

class TKorvalGraph;
class TSliderSeries;

/// Gives a graph the series of a data component. The link owns its series; the graph's data panel
/// shows them while the link is attached. Either may go first. A member of its component; GUI
/// thread only.
///
/// Signals may come while the component that owns the link changes: connect what is only notified.
class TCustomGraphLink : public TPersistent {
  Q_OBJECT

 public:
  explicit TCustomGraphLink(QObject* owner = nullptr);
  ~TCustomGraphLink() override;

  /// The graph that shows the series; null while detached. Not owned.
  TKorvalGraph* GetGraph() const;
  /// Takes the series out of the present graph and into another; null detaches.
  void SetGraph(TKorvalGraph* graph);
  bool IsAttached() const { return GetGraph() != nullptr; }

  /// The graph's object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetGraphName() const { return graph_.GetName(); }
  void SetGraphName(const QString& name) { graph_.SetName(name); }
  /// To be called once the form of the owner is complete: looks for the graph by its name.
  void Loaded() { graph_.Loaded(); }

  /// The series, in drawing order; owned. One that is added while the link is attached shows at
  /// once.
  TSeriesList& GetSeriesList() { return series_; }
  const TSeriesList& GetSeriesList() const { return series_; }
  template <class T>
  T* AddSeries(std::unique_ptr<T> series) {
    return series_.Add(std::move(series));
  }
  /// Appearance of the series as forms keep it, and back onto the series of the same class at the
  /// same place. A damaged text is ignored.
  QString GetSeriesData() const { return series_.WriteProperties(); }
  void SetSeriesData(const QString& text) { series_.RestoreProperties(text); }

  int GetUpdateInterval() const { return updateInterval_; }
  /// Below 1 ignored.
  void SetUpdateInterval(int interval);

  /// Announces a new value: every UpdateInterval-th call is an UpdateNow.
  void Update();
  /// Fires OnUpdate, then lays the graph out and draws it anew.
  void UpdateNow();
  /// Lays the graph out and draws it anew, without the event.
  void Replay();

  /// Copies the graph, the update interval and the appearance of the series.
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 signals:
  /// The points are about to be drawn: what they are computed from can be brought up to date.
  void OnUpdate(QObject* sender);
  /// The link was attached to a graph or detached from one.
  void OnGraphChanged(QObject* sender);

 protected:
  /// The graph has just been set; comes before OnGraphChanged.
  virtual void Attached() {}

 private:
  void GraphChanged(TListAction action);
  void ShowSeries();
  void LeaveGraph();

  TSeriesList series_{this};
  TComponentRef<TKorvalGraph> graph_;
  int updateInterval_ = 1;
  int updates_ = 0;  ///< since the last redraw
};

/// The graph link that a data component publishes.
class TGraphLink : public TCustomGraphLink {
  Q_OBJECT
  Q_PROPERTY(QString Graph READ GetGraphName WRITE SetGraphName)
  Q_PROPERTY(int UpdateInterval READ GetUpdateInterval WRITE SetUpdateInterval)
  Q_PROPERTY(QString SeriesData READ GetSeriesData WRITE SetSeriesData DESIGNABLE false)

 public:
  using TCustomGraphLink::TCustomGraphLink;
};

/// Shows a value as a slider in a graph, and writes the value that the user drags it to.
class TSliderLink : public TCustomGraphLink {
  Q_OBJECT

 public:
  /// The axis along which the value lies.
  enum TSliderAxis : int { saX, saY };
  Q_ENUM(TSliderAxis)

 private:
  Q_PROPERTY(QString Graph READ GetGraphName WRITE SetGraphName)
  Q_PROPERTY(TSliderAxis SliderAxis READ GetSliderAxis WRITE SetSliderAxis)
  Q_PROPERTY(QString SeriesData READ GetSeriesData WRITE SetSeriesData DESIGNABLE false)

 public:
  explicit TSliderLink(QObject* owner = nullptr);

  /// Asked for the value when the link is attached to a graph; may be unset.
  std::function<double()> ReadValue;
  /// Gets the value under the slider with each step of a drag; may be unset.
  std::function<void(double value)> WriteValue;

  TSliderAxis GetSliderAxis() const { return axis_; }
  /// Takes the other coordinate of the slider as the value from now on, and its grid line.
  void SetSliderAxis(TSliderAxis axis);

  /// The value at which the slider stands.
  double GetSliderPos() const;
  /// Moves the slider to a value; not finite is ignored. Writes nothing back.
  void SetSliderPos(double value);

  TSliderSeries* Slider() const { return slider_; }

  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 protected:
  void Attached() override;

 private:
  TSliderSeries* slider_;  ///< in the link's list, which owns it
  TSliderAxis axis_ = saX;
};

#pragma once

#include <QDialog>
#include <QPointer>
#include <vector>

#include "components/graphing/Serieslist.h"
#include "components/graphing/editors/Propertyform.h"

class QListWidget;
class QStackedWidget;

/// Edits every published property of the series of a list. Each change shows in the graph at once;
/// Apply makes the present state the one that Cancel restores. Series may come and go meanwhile:
/// those that come are not shown. GUI thread only.
class TSeriesEditor : public QDialog {
  Q_OBJECT

 public:
  explicit TSeriesEditor(const TSeriesList& list, QWidget* parent = nullptr);

  void Apply();
  void reject() override;

 private:
  void AddSeries(TCustomGraphSeries& series);

  QListWidget* names_;
  QStackedWidget* pages_;
  std::vector<TPropertyForm*> forms_;  ///< owned by their pages
};

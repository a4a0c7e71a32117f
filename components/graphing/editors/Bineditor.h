#pragma once

#include <QDialog>
#include <functional>

#include "components/graphing/Seriesstyle.h"
#include "components/links/Binlist.h"
#include "model/Timer.h"

class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class TBinModel;
class TKorvalGraph;

/// Shows the bins of a list as bars and as a table while they are being filled, and edits their
/// grid. A new grid empties the bins, and so takes effect only with Apply or OK. GUI thread only.
class TBinEditor : public QDialog {
  Q_OBJECT

 public:
  /// The bins are not owned and outlive the dialog.
  explicit TBinEditor(TBinList& bins, QWidget* parent = nullptr);
  ~TBinEditor() override;

  /// What the button Reset does; initially empties the bins. May destroy the dialog.
  std::function<void()> Reset;

  /// Draws the bars in the colours of a style.
  void SetColors(const TSeriesStyle& style);
  /// Adds a row below step and anchor; the dialog takes the widget.
  void AddRow(const QString& caption, QWidget* widget);

  /// Takes step and anchor as they are entered. Nothing happens if they are no grid.
  void Apply();
  void accept() override;

 signals:
  /// The user has confirmed what is entered.
  void OnApply();
  /// The bins have changed since they were last shown; at most ten times a second.
  void OnRefresh();

 private:
  struct TShown {
    int bins = 0;
    double first = 0.0;
    double counted = 0.0;
    double lost = 0.0;
    friend bool operator==(const TShown&, const TShown&) = default;
  };

  QLineEdit* AddNumber(const QString& name, const QString& caption, double value);
  TKorvalGraph* MakePreview();
  QWidget* MakeColumn();
  TShown Present() const;
  void ShowGrid();
  void CheckInput();
  void Refresh();
  void Tick(QObject* sender);

  TBinList& bins_;
  TSeriesStyle* style_ = nullptr;  ///< of the preview's bars
  TKorvalGraph* preview_;
  TBinModel* model_;
  QFormLayout* form_ = nullptr;
  QLineEdit* step_ = nullptr;
  QLineEdit* anchor_ = nullptr;
  QLabel* hint_;
  QLabel* summary_;
  QDialogButtonBox* buttons_;
  TShown shown_;
  TTimerClient timer_;
};

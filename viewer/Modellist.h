#pragma once

#include <QWidget>

#include "model/Animmodel.h"

class QListWidget;

/// The legend: a small window that lists the data sets of the loaded data file. A selected item is
/// a shown data set. Owns the data sets. GUI thread only.
class TModelListWnd : public QWidget {
  Q_OBJECT

 public:
  /// A tool window over `parent`, hidden at first.
  explicit TModelListWnd(QWidget* parent = nullptr);

  /// Replaces the data sets by those of a file and lists them; Data.CheckedLabels says which are
  /// shown. A failed or cancelled load leaves what TMeasuredData leaves.
  [[nodiscard]] TLoadReport LoadFromFile(const QString& fileName, TModel& model,
                                         const TLoadProgress& progress = {});

  [[nodiscard]] TLoadReport LoadFromMemory(std::string_view text, TModel& model,
                                           const TLoadProgress& progress = {});

  /// Lists the data sets anew, after Data was filled elsewhere.
  void FillLabels();

  /// Deletes the data sets and empties the list.
  void Clear();

  /// One character per data set, "1" for shown and "0" for hidden; "1" if there is none.
  QString MakeCheckString() const { return Data.MakeCheckString(); }

  TMeasuredData Data;

 public slots:
  /// Shows the data sets whose items are selected, hides the others.
  void ShowHideData();

 signals:
  /// Other data sets are shown; `changed` is false if the user chose the same ones again.
  void OnShowHide(QObject* sender, bool changed);
  /// The user closed the legend.
  void OnClose(QObject* sender);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QListWidget* labels_;
};

#pragma once

#include <QDialog>
#include <functional>
#include <vector>

#include "components/graphing/Axis.h"

class QFormLayout;
class QLabel;
class QLineEdit;

/// Edits every published property of an axis. Each change shows in the graph at once; Apply makes
/// the present state the one that Cancel restores. A range that the axis cannot take stays in its
/// fields, with the reason below them, and keeps the dialog open. GUI thread only.
class TAxisEditor : public QDialog {
  Q_OBJECT

 public:
  /// The axis is not owned and outlives the dialog.
  explicit TAxisEditor(TAxis& axis, QWidget* parent = nullptr);
  ~TAxisEditor() override;

  void Apply();
  void accept() override;
  void reject() override;

 private:
  QWidget* RangeGroup();
  QWidget* TickGroup(const QString& title, TTick& tick);
  QWidget* LabelGroup();
  QWidget* FormatGroup();
  QWidget* TitleGroup();

  // Each adds a row that shows a property and sets it; `get` also feeds Refresh.
  template <typename T>
  void AddChoice(QFormLayout* form, const QString& name, const QString& caption,
                 const QStringList& choices, const std::function<T()>& get,
                 const std::function<void(T)>& set);
  void AddNumber(QFormLayout* form, const QString& name, const QString& caption, int from, int to,
                 const std::function<int()>& get, const std::function<void(int)>& set);
  void AddColor(QFormLayout* form, const QString& name, bool noneAllowed,
                const std::function<TColor()>& get, const std::function<void(TColor)>& set);
  void AddFont(QFormLayout* form, const QString& name, const std::function<QFont()>& get,
               const std::function<void(const QFont&)>& set);
  QWidget* Bound(const QString& name, QLineEdit* edit, const std::function<double()>& get,
                 const std::function<bool()>& isAuto, const std::function<void(bool)>& setAuto);
  QLineEdit* Text(const QString& name, const std::function<QString()>& get,
                  const std::function<void(const QString&)>& set);

  /// Gives the axis both bounds at once, so that neither meets the other's old value.
  void TakeRange();
  /// Why the axis cannot take the bounds in the fields; empty if it has taken them.
  QString RangeRefusal();
  bool IsRangeRefused();

  /// Shows the axis as it is: a setter may have refused, swapped or rounded what was entered.
  void Refresh();

  TAxis& axis_;
  TAxis before_;  ///< what Cancel restores
  QLineEdit* minimum_ = nullptr;
  QLineEdit* maximum_ = nullptr;
  QLabel* refusal_ = nullptr;
  std::vector<std::function<void()>> refreshers_;
  bool refreshing_ = false;
};

#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "components/graphing/Graphseries.h"

/// Series in drawing order. A list owns what was added to it; a panel's list also shows series of
/// graph links, which it borrows.
class TSeriesList : public TPersistent {
  Q_OBJECT

 public:
  explicit TSeriesList(QObject* owner = nullptr) : TPersistent(owner) {}
  /// The list of a panel, which owns it.
  explicit TSeriesList(TSeriesPanel& panel) : TPersistent(&panel), panel_(&panel) {}
  ~TSeriesList() override;

  int Count() const { return static_cast<int>(entries_.size()); }
  bool Empty() const { return entries_.empty(); }
  /// Null outside the list.
  TCustomGraphSeries* Get(int index) const;
  /// -1 if the list does not hold it.
  int IndexOf(const TCustomGraphSeries* series) const;
  bool IsOwner(int index) const;

  /// Takes the series at the end of the list; null is ignored.
  template <class T>
  T* Add(std::unique_ptr<T> series) {
    T* added = series.get();
    AddOwned(std::move(series));
    return added;
  }
  /// Shows the series of a link's list, which still owns them. One that is there already stays; the
  /// series of another panel stay in that one.
  void Borrow(const TSeriesList& owner);
  /// Takes out what was borrowed from another list, all at once: nobody asks one of them for points
  /// any more.
  void Return(const TSeriesList& owner);
  /// Takes the series out and frees it if the list owns it; other indices are ignored.
  void Delete(int index);
  /// Takes the series out; the caller gets it if the list owned it.
  std::unique_ptr<TCustomGraphSeries> Remove(TCustomGraphSeries* series);
  void Clear();

  /// Opens the series editor if one has been supplied.
  void ShowEditor();
  /// Supplied by whoever knows the editor dialog.
  std::function<void(TSeriesList& list)> Editor;

  /// A class whose records ReadProperties can make anew; `T` needs no constructor argument.
  /// TSeries, TArraySeries and TSliderSeries are known.
  template <class T>
  static void RegisterClass() {
    Factories()[T::staticMetaObject.className()] = [] { return std::make_unique<T>(); };
  }

  /// The owned series as text, and back in place of the present owned ones. A damaged text is
  /// refused with a reason and leaves the list as it is.
  QString WriteProperties() const;
  [[nodiscard]] bool ReadProperties(const QString& text, QString* error = nullptr);
  /// Gives the series of the list the properties of those in a text that have the same place and
  /// class. The series stay, with their sources. A damaged text changes nothing.
  void RestoreProperties(const QString& text);

  /// Gives the destination copies of the owned series in place of its own.
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  struct TEntry {
    TCustomGraphSeries* series = nullptr;
    std::unique_ptr<TCustomGraphSeries> owned;  ///< null for a borrowed series
  };
  using TFactory = std::function<std::unique_ptr<TCustomGraphSeries>()>;
  static std::map<std::string, TFactory>& Factories();

  static std::unique_ptr<TCustomGraphSeries> Make(const QString& className);

  void AddOwned(std::unique_ptr<TCustomGraphSeries> series);
  void Leave(TCustomGraphSeries& series);
  void ReplaceOwned(std::vector<TEntry> entries);
  void Changed();

  TSeriesPanel* panel_ = nullptr;  ///< the panel whose list this is; null for a link's
  std::vector<TEntry> entries_;
};

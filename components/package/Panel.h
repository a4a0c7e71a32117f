#pragma once

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "components/package/Formfile.h"
#include "components/package/Registry.h"

/// A panel: the widgets of a form file with the components among them, connected and running. GUI
/// thread only.
///
/// What is wrong in a file is told in one sentence each, "FILE:LINE: component: property: what",
/// and the rest works: an unknown class leaves a placeholder, a property that cannot be set keeps
/// its default, a reference to nothing is kept for the day it can be resolved, a circle of client
/// controls is opened where it closes.
class TPanel {
 public:
  /// Null only if the text is no form file at all.
  static std::unique_ptr<TPanel> FromText(const QString& text, const QString& fileName,
                                          QStringList* faults);
  static std::unique_ptr<TPanel> Load(const QString& fileName, QStringList* faults);
  ~TPanel();

  /// Owned by the panel until it gets a parent.
  QWidget* Root() const { return root_; }
  const QString& FileName() const { return fileName_; }

  struct TEntry {
    QString Name;  ///< in the file
    const TComponentClass* Class;
    QPointer<QWidget> Component;  ///< not owned, may go first
  };
  /// In the order of the file.
  std::span<const TEntry> Components() const { return entries_; }

  /// The form file with the present properties of the components, hidden ones included, where they
  /// differ from those of a new component. All else is as it was read.
  QString Text() const;
  /// Writes it, replacing the file at once or not at all. False with a sentence if it cannot.
  [[nodiscard]] bool Save(const QString& fileName, QString* error);

 private:
  TPanel() = default;

  QString fileName_;
  TFormFile form_;
  QPointer<QWidget> root_;
  std::vector<TEntry> entries_;
  /// Properties that could not be set stay in the file: name of the component and of the property.
  std::set<std::pair<QString, QString>> refused_;

  friend class TPanelReader;
};

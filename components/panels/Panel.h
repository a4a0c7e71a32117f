#pragma once

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <set>
#include <span>
#include <vector>

#include "components/links/Outside.h"
#include "components/panels/Formconnections.h"
#include "components/panels/Formfile.h"
#include "components/panels/Formpictures.h"
#include "components/panels/Registry.h"
#include "components/panels/Trust.h"

/// A panel: the widgets of a form file with the components among them, connected, and running once
/// it has been started. GUI thread only.
///
/// A panel that has been read is at rest: its components do all that stays inside it, but they
/// connect to nothing, open no port, write no file and read none outside its folder.
///
/// What is wrong in a file is said in one sentence each, "FILE:LINE: component: property: what",
/// and the rest works: an unknown class leaves a placeholder, a property that cannot be set keeps
/// its default, a reference to nothing is kept for the day it can be resolved, a circle of client
/// controls is opened where it closes, and of two components with one name the first has it.
class TPanel {
 public:
  /// Null only if the text is no form file at all.
  /// `known`: files outside its folder may be read from the beginning.
  static std::unique_ptr<TPanel> FromText(const QString& text, const QString& fileName,
                                          QStringList* faults, bool known = false);
  /// `trusted`: it is known, whether its user has allowed it or not.
  static std::unique_ptr<TPanel> Load(const QString& fileName, QStringList* faults,
                                      bool trusted = false);
  ~TPanel();

  /// What its components want from outside, each thing once, in the order of the file.
  TWishes Wishes() const;
  bool IsAtRest() const { return root_ && ::IsAtRest(root_); }
  /// Lets the components do what they want; of what they want to write outside the panel's folder
  /// only this.
  void Start();

  /// Owned by the panel until it gets a parent.
  QWidget* Root() const { return root_; }
  const QString& FileName() const { return fileName_; }

  struct TEntry {
    QString Name;  ///< in the file
    const TComponentClass* Class;
    QPointer<QWidget> Component;  ///< not owned, may go first
    const TFormFile::TWidget* Widget;
  };
  /// In the order of the file.
  std::span<const TEntry> Components() const { return entries_; }

  /// What an answer of the user is about: the file as it was read or written last.
  TPanelMark Mark() const { return {fileName_, content_, WishesHash(Wishes())}; }
  /// Another program has written the file since.
  bool IsChangedOnDisk() const;

  /// The form file with the present properties of the components, hidden ones included, where they
  /// differ from those of a new component. All else is as it was read, a value that a property
  /// refused included, until the property has another one.
  QString Text() const;
  /// What a user has set, to see whether it has changed: the text without hidden properties,
  /// without values, and without what is switched on.
  QString Settings() const;
  /// Settings and measurements: all but what is switched on, to see whether anything would go.
  QString State() const;
  /// Writes it, replacing the file at once or not at all. False with a sentence if it cannot. In
  /// another folder the file names in it are others, so that they still mean the same files.
  [[nodiscard]] bool Save(const QString& fileName, QString* error);

 private:
  TPanel() = default;
  QString TextFor(const QString& folder) const;
  QString TextOf(bool (*wanted)(const TPublished&)) const;

  QString fileName_;
  QString folder_;      ///< where file names are meant from: that of the file when it was read
  QByteArray content_;  ///< hash of the file; empty for a text
  TFormFile form_;
  std::unique_ptr<TFormPictures> pictures_;  ///< go after the widgets
  TFormConnections connections_;
  QPointer<QWidget> root_;
  std::vector<TEntry> entries_;
  std::set<const TFormFile::TProperty*> refused_;  ///< could not be set

  friend class TPanelReader;
};

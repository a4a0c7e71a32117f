#pragma once

#include <QString>
#include <optional>
#include <vector>

class QObject;

/// What lies outside a panel: files, ports, servers; what its components want of that, and whether
/// they may have it. A panel that was read from a form file is at rest until its user has agreed to
/// what it wants: nothing of it connects, opens a port or writes, and it reads below its own folder
/// alone. Components that no form brought may do everything. GUI thread only, unless said
/// otherwise.

/// Something that a component wants from outside, by its present properties, whether it is switched
/// on or not.
struct TWish {
  enum class TKind { Connect, OpenPort, Write, Read, Follow };

  TKind Kind;
  QString Target;  ///< as the form says it
  QString Place;   ///< where a file may lie: this file, or below this folder; in full
  QString Text;    ///< in plain words, fit to be shown
};
using TWishes = std::vector<TWish>;

/// To be called by whoever reads a form, before the components get their properties. Relative file
/// names in them are meant from the folder of the form's file. `readsAnywhere`: the form is known,
/// and may read files outside its folder, too.
void BeginForm(QObject& form, const QString& folder, bool readsAnywhere = false);
/// The user has agreed to these wishes; the form is at rest no longer.
void StartForm(QObject& form, const TWishes& granted);

/// The folder of the form in which the component, or the owner of the sub-object, stands; empty if
/// no form brought it.
QString FormFolder(const QObject* component);
/// The name as the program opens it: a relative one in the folder of the form.
QString FormPath(const QObject* component, const QString& fileName);
bool IsAtRest(const QObject* component);

// Wishes of a component. Names that are empty give none.
void AddConnectWish(TWishes& wishes, const QString& host, int port);
void AddPortWish(TWishes& wishes, const QString& port);
/// `isPattern`: parts of the name from the first with a '%' on are made later.
void AddWriteWish(TWishes& wishes, const QObject* component, const QString& fileName,
                  bool isPattern = false);
/// Files of any name in a folder; empty is the folder of the form.
void AddFolderWish(TWishes& wishes, const QObject* component, const QString& folder);
/// None for a file below the folder of the form, which may be read anyway.
void AddReadWish(TWishes& wishes, const QObject* component, const QString& fileName);
/// A file that a click opens with the program that the system has for it.
void AddFollowWish(TWishes& wishes, const QObject* component, const QString& fileName);

/// Why nothing may be connected or opened yet; empty if it may.
QString RestRefusal(const QObject* component);
/// Why this file may not be read because of the place where it lies; empty if it may.
QString ReadRefusal(const QObject* component, const QString& path);
/// The place below which a wish to write may be fulfilled now: empty for everywhere, nothing for
/// nowhere.
std::optional<QString> WritePlace(const QObject* component, const TWish& wish);
/// Why it is nowhere.
QString NoPlaceText(const QObject* component);
/// Why this file may not be opened with another program; empty if it may.
QString FollowRefusal(const QObject* component, const QString& path);
/// Why this file may not be written if it must lie in that place; empty if it may. Any thread.
QString PlaceRefusal(const QString& path, const QString& place);
/// Both in one: for the only wish in the list. `path`: the file that is about to be opened.
QString WriteRefusal(const QObject* component, const TWishes& wishes, const QString& path);

/// The full path with all links followed, also of a file that is not there. Any thread.
QString RealPath(const QString& path);
/// Whether a full path is that of the folder or of something in it. Any thread.
bool IsBelow(const QString& path, const QString& folder);

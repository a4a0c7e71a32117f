#pragma once

#include <QByteArray>
#include <QString>

#include "components/links/Outside.h"

/// Which panels start without a question. What the user has answered stands in a file of the
/// settings folder, one line for each file and folder; the oldest lines go when there are too many.
/// GUI thread only.

/// What an answer is about: this file as long as it holds this, and wants this.
struct TPanelMark {
  QString FileName;
  QByteArray Content;  ///< hash
  QByteArray Wishes;   ///< hash
  friend bool operator==(const TPanelMark&, const TPanelMark&) = default;
};

/// The hash that a mark keeps.
QByteArray ContentHash(QByteArrayView bytes);
/// A link that leads elsewhere than it did makes another wish of the same name.
QByteArray WishesHash(const TWishes& wishes);

/// The user allowed a file of this name and content, or its folder; what it wants is not known yet.
bool IsKnownPanel(const QString& fileName, const QByteArray& content);
/// The user allowed just this.
bool IsTrusted(const TPanelMark& mark);

/// Remember the answer "always". An empty text, or why it cannot be remembered.
[[nodiscard]] QString TrustFile(const TPanelMark& mark);
/// Panels in this folder and the folders below it, whatever they hold.
[[nodiscard]] QString TrustFolder(const QString& folder);

/// Why a folder cannot be allowed as a whole, because others put files there, too; empty if it can.
QString UnsafeFolder(const QString& folder);

/// The file that holds the answers.
QString TrustFileName();

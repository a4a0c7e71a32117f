#pragma once

#include <QFrame>

#include "components/links/Outside.h"

/// The bar over a panel at rest: what the panel wants, and the buttons that answer. GUI thread
/// only.
class TWishBar : public QFrame {
  Q_OBJECT

 public:
  enum class TAnswer { Start, AlwaysFile, AlwaysFolder, LeaveOff };

  /// `unsafeFolder`: why the folder is not offered; empty if it is.
  TWishBar(const TWishes& wishes, const QString& folder, const QString& unsafeFolder,
           QWidget* parent);

 signals:
  void OnAnswer(TAnswer answer);
};

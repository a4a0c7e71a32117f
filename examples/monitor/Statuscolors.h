#pragma once

#include <QColor>
#include <QString>

#include "components/channels/Channelstat.h"

/// How the monitor shows a status: dark ink on a light ground of the status's colour. None is the
/// status of a channel whose source sends nothing.
struct TStatusLook {
  QString Text;
  QColor Ground;
  QColor Ink;
};

inline TStatusLook StatusLook(TStatStatus status) {
  switch (status) {
    case ssNormal:
      return {QStringLiteral("Normal"), QColor(221, 243, 226), QColor(20, 80, 40)};
    case ssWarning:
      return {QStringLiteral("Warning"), QColor(255, 233, 168), QColor(100, 65, 0)};
    case ssAlarm:
      return {QStringLiteral("Alarm"), QColor(250, 200, 196), QColor(130, 15, 15)};
    default:
      return {QStringLiteral("No data"), QColor(236, 238, 241), QColor(95, 102, 112)};
  }
}

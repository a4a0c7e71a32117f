#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "components/panels/Formfile.h"

class QObject;

/// The connections of a panel. A form may connect what components publish, their own signals and
/// slots, and of the toolkit what shows or gives a value. A chain of them that comes back to where
/// it began is cut there, and that connection is taken out.
class TFormConnections {
 public:
  TFormConnections();
  ~TFormConnections();

  /// Empty, or why it cannot be made.
  QString Connect(QObject* sender, QObject* receiver, const TFormFile::TConnection& wanted);

  /// Called once with each connection that is taken out.
  std::function<void(const TFormFile::TConnection&)> OnCircle;

 private:
  class TRelay;
  struct TChain;
  const std::shared_ptr<TChain> chain_;
};

#include "components/links/Properties.h"

int FirstOwnProperty(const QMetaObject& meta) {
  const QMetaObject* base = &meta;
  while (base && base->className()[0] != 'Q') base = base->superClass();
  return base ? base->propertyCount() : 0;
}

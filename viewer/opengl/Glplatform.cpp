#include "viewer/opengl/Glplatform.h"

#include <QGuiApplication>
#include <QOpenGLContext>
#include <QStringList>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

bool Ask() {
  // Platforms that draw into memory; to ask them for a context draws a warning.
  static const QStringList without = {"offscreen", "minimal", "vnc", "linuxfb"};
  if (without.contains(QGuiApplication::platformName())) return false;
  QOpenGLContext context;
  return context.create();
}

}  // namespace

bool PlatformHasOpenGl() {
  if (!qGuiApp) return false;
  static const bool has = Ask();
  return has;
}

void KeepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_TRIM_THRESHOLD, 64 << 20);
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
#endif
}

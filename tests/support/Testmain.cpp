#include <gtest/gtest.h>

#include <QApplication>

#ifdef VELMORA_SANITIZED_ADDRESS
#include <sanitizer/lsan_interface.h>
#endif

void InstallTestWatch();

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  InstallTestWatch();
  const int result = RUN_ALL_TESTS();
#ifdef VELMORA_SANITIZED_ADDRESS
  // While the OpenGL driver is loaded and its leaks bear its name.
  __lsan_do_leak_check();
#endif
  return result;
}

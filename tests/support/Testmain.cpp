#include <gtest/gtest.h>

#include <QApplication>

void InstallTestWatch();

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  InstallTestWatch();
  return RUN_ALL_TESTS();
}

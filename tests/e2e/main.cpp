// Processes need an application object, and no network.
#include <gtest/gtest.h>
#include <QCoreApplication>
#include <cstdio>

#include "e2e/WithoutNetwork.h"

int main(int argc, char** argv) {
  if (!kalivor::test::DenyNetwork()) {
    std::perror("The network cannot be denied");
    return 1;
  }
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}

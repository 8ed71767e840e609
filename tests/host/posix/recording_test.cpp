#include <gtest/gtest.h>

#include <filesystem>

#include "host/run_program.h"

namespace host_test {
namespace {

TEST(Recording, KeepsShownSecretsToItsOwner) {
  using std::filesystem::perms;
  const WorkingFolder folder;
  WriteFile("old", "others may read this");
  std::filesystem::permissions("old", perms(0644));
  for (const char* file : {"old", "new"}) {
    RunOrvane(std::string("apdu --simulate --show-secrets 00A40000 --record ") + file);
    EXPECT_EQ(std::filesystem::status(file).permissions(), perms(0600)) << file;
  }
}

}  // namespace
}  // namespace host_test

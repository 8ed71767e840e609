#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <random>

#include "tags/dictionary.h"

namespace {
bool readingFails = false;
}

// Stands in the way of the C library's function.
extern "C" __attribute__((visibility("default"))) ssize_t read(int descriptor, void* area,
                                                               size_t size) {
  if (!readingFails) return syscall(SYS_read, descriptor, area, size);
  errno = EIO;
  return -1;
}

// The dictionary of this process stays untouched, so that each child begins as a new process.
namespace orvane_test {
namespace {

namespace fs = std::filesystem;

pid_t StartChild(const std::function<bool()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work() ? 0 : 1);
  return child;
}

bool Succeeds(const std::function<bool()>& work) {
  int status = 0;
  waitpid(StartChild(work), &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Permissions hold for everybody but the superuser, whom tests may run as.
bool GiveUpPrivileges() {
  constexpr uid_t kNobody = 65534;
  return geteuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0);
}

bool AddAndFlush() {
  const TagdictData record = MakeRecord({"5A", "new", ""});
  return AddTagdictData(&record) == 1 && FlushTagdict() == 1;
}

const List kOld = {{"57", "old", ""}};
const List kNew = {{"57", "old", ""}, {"5A", "new", ""}};
const List kMany(300, {"57", std::string(100, 'x'), ""});

class Flush : public testing::Test {
 protected:
  // A file that anybody may write, in a folder that takes no other.
  static void WriteAlone(const List& records) {
    WriteFile(kDictionaryFile, FileImage(records));
    chmod(kDictionaryFile, 0666);
    chmod(".", 0555);
  }

  WorkingFolder folder;
};

TEST_F(Flush, KeepsThePermissions) {
  for (const mode_t mode : {0640U, 0600U, 0606U}) {
    chmod(kDictionaryFile, mode);
    EXPECT_TRUE(Succeeds([] { return umask(027), FlushTagdict() == 1; }));
    EXPECT_EQ(static_cast<mode_t>(fs::status(kDictionaryFile).permissions()), mode);
  }
}

TEST_F(Flush, LeavesWhatItMayNotWriteAsItIs) {
  const auto flush = [] { return GiveUpPrivileges() && AddAndFlush(); };
  WriteFile(kDictionaryFile, FileImage(kOld));
  chmod(kDictionaryFile, 0444);
  chmod(".", 0777);
  EXPECT_TRUE(Succeeds(flush));
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(kOld));
  EXPECT_EQ(FilesIn("."), 1);

  fs::remove(kDictionaryFile);
  chmod(".", 0555);
  EXPECT_TRUE(Succeeds(flush));
  EXPECT_EQ(FilesIn("."), 0);

  chmod(".", 0777);
  fs::create_directory(kDictionaryFile);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_EQ(FilesIn("."), 1);
  EXPECT_EQ(FilesIn(kDictionaryFile), 0);
}

TEST_F(Flush, WritesAFileInAFolderThatTakesNoOther) {
  WriteAlone(kMany);
  EXPECT_TRUE(Succeeds([] { return GiveUpPrivileges() && AddAndFlush(); }));
  List grown = kMany;
  grown.push_back(kNew[1]);
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(grown));
  EXPECT_TRUE(Succeeds([] {
    while (DeleteTagdictData("57") == 1) continue;
    return GiveUpPrivileges() && FlushTagdict() == 1;
  }));
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({kNew[1]}));
  EXPECT_EQ(FilesIn("."), 1);
}

TEST_F(Flush, FollowsSymbolicLinks) {
  const fs::path target = fs::current_path() / "target";
  const WorkingFolder elsewhere;
  WriteFile(target, FileImage(kOld));
  fs::create_symlink(target, "middle");
  fs::create_symlink("middle", kDictionaryFile);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_EQ(ReadFile(target), FileImage(kNew));

  // A link that leads to no file yet.
  fs::remove(target);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_TRUE(fs::is_symlink(kDictionaryFile) && fs::is_symlink("middle"));
  EXPECT_EQ(ReadFile(target), FileImage({kNew[1]}));
  EXPECT_EQ(FilesIn(target.parent_path()), 1);

  // A link in a circle, and one to something that is no file.
  for (const char* end : {kDictionaryFile, "/dev/null"}) {
    fs::remove(kDictionaryFile);
    fs::create_symlink(end, kDictionaryFile);
    EXPECT_TRUE(Succeeds(AddAndFlush));
    EXPECT_TRUE(fs::is_symlink(kDictionaryFile));
  }
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(FilesIn("."), 2);
}

TEST_F(Flush, KeepsTheOldFileWhenTheDiskIsFull) {
  const std::string before = FileImage(kMany);
  const auto flush = [&](bool replaces) {
    const rlimit limit{before.size(), before.size()};  // no file may get longer
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_IGN);
    // Only its owner's flush, or the superuser's, replaces the file.
    return (replaces || GiveUpPrivileges()) && AddAndFlush();
  };
  WriteAlone(kMany);
  for (const mode_t mode : {0555U, 0777U}) {
    chmod(".", mode);
    EXPECT_TRUE(Succeeds([&] { return flush(mode == 0777U); }));
    EXPECT_EQ(ReadFile(kDictionaryFile), before);
    EXPECT_EQ(FilesIn("."), 1);
  }
}

TEST_F(Flush, DoesNotTouchAFileThatFailedWhileItWasRead) {
  WriteFile(kDictionaryFile, FileImage(kOld));
  EXPECT_TRUE(Succeeds([] {
    readingFails = true;
    const bool flushed = AddAndFlush();
    readingFails = false;
    return flushed && ReadFile(kDictionaryFile) == FileImage(kOld) && FlushTagdict() == 1;
  }));
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({kNew[1], kNew[0]}));
}

constexpr int kRecords = 200;

// Marks every record with the number of the flush that follows, again and again.
bool FlushForever() {
  for (unsigned flush = 1;; ++flush) {
    const std::string mark = std::to_string(flush) + std::string(800, '.');
    for (int i = 0; i < kRecords; ++i) {
      const TagdictData record = MakeRecord({std::to_string(i), "", mark});
      if (UpTagdictData(&record) != 1) return false;
    }
    FlushTagdict();
  }
}

TEST_F(Flush, LeavesOneWholeStateWhenItIsKilled) {
  std::mt19937 random(43);
  std::string last;
  int changes = 0;
  for (unsigned round = 0; changes < 100; ++round) {
    ASSERT_LT(round, 2000U);
    const pid_t child = StartChild(FlushForever);
    // Longer and longer, for a slow machine gets nowhere else.
    usleep(static_cast<useconds_t>(2000 + random() % (20000 + 500 * round)));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    const std::string content = ReadFile(kDictionaryFile).value_or("");
    if (content == last) continue;
    ASSERT_NE(content, "") << "the file is gone";
    last = content;
    ++changes;
    ASSERT_TRUE(Succeeds([] {
      List list = ListOf(GetTagdict);
      const std::size_t count = list.size();
      std::erase_if(list, [mark = list[0][2]](const Texts& texts) { return texts[2] == mark; });
      return count == kRecords && list.empty();
    }));
  }
}

}  // namespace
}  // namespace orvane_test

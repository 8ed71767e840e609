#include <fcntl.h>
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
#include <string>
#include <vector>

#include "tags/dictionary_process.h"

namespace {
bool readingFails = false;
}

/// Stands in the way of the C library's function.
extern "C" __attribute__((visibility("default"))) ssize_t read(int descriptor, void* area,
                                                               size_t size) {
  if (!readingFails) return syscall(SYS_read, descriptor, area, size);
  errno = EIO;
  return -1;
}

// The dictionary of this process stays untouched, so that each child begins as a new process.
namespace orvane_test {
namespace {

using List = std::vector<Texts>;

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

/// Permissions hold for everybody but the superuser, whom tests may run as.
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

mode_t ModeOf(const std::filesystem::path& path) {
  struct stat status {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

std::ptrdiff_t FilesIn(const std::filesystem::path& folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

class Flush : public testing::Test {
 protected:
  WorkingFolder folder;
};

TEST_F(Flush, KeepsThePermissions) {
  WriteFile(kDictionaryFile, FileImage(kOld));
  for (const mode_t mode : {0600U, 0640U, 0666U, 0604U}) {
    chmod(kDictionaryFile, mode);
    EXPECT_TRUE(Succeeds([] { return FlushTagdict() == 1; }));
    EXPECT_EQ(ModeOf(kDictionaryFile), mode);
  }
  std::filesystem::remove(kDictionaryFile);
  EXPECT_TRUE(Succeeds([] {
    umask(027);
    return FlushTagdict() == 1;
  }));
  EXPECT_EQ(ModeOf(kDictionaryFile), 0640U);
}

TEST_F(Flush, LeavesWhatItMayNotWriteAsItIs) {
  WriteFile(kDictionaryFile, FileImage(kOld));
  chmod(kDictionaryFile, 0444);
  chmod(".", 0777);
  EXPECT_TRUE(Succeeds([] { return GiveUpPrivileges() && AddAndFlush(); }));
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(kOld));
  EXPECT_EQ(FilesIn("."), 1);

  std::filesystem::remove(kDictionaryFile);
  chmod(".", 0555);
  EXPECT_TRUE(Succeeds([] { return GiveUpPrivileges() && AddAndFlush(); }));
  EXPECT_EQ(FilesIn("."), 0);

  chmod(".", 0777);
  std::filesystem::create_directory(kDictionaryFile);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_EQ(FilesIn("."), 1);
  EXPECT_EQ(FilesIn(kDictionaryFile), 0);
}

TEST_F(Flush, WritesAFileInAFolderThatTakesNoOther) {
  for (const auto& before : {kOld, List(300, {"57", std::string(100, 'x'), ""})}) {
    WriteFile(kDictionaryFile, FileImage(before));
    chmod(kDictionaryFile, 0666);
    chmod(".", 0555);
    EXPECT_TRUE(Succeeds(
        [] { return GiveUpPrivileges() && DeleteTagdictData("57") == 1 && AddAndFlush(); }));
    chmod(".", 0755);
    List after(before.begin() + 1, before.end());
    after.push_back(kNew.back());
    EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(after));
    EXPECT_EQ(FilesIn("."), 1);
  }
  // A file that shrinks.
  chmod(".", 0555);
  EXPECT_TRUE(Succeeds([] {
    while (DeleteTagdictData("57") == 1) continue;
    return GiveUpPrivileges() && FlushTagdict() == 1;
  }));
  chmod(".", 0755);
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({kNew.back()}));
}

TEST_F(Flush, FollowsSymbolicLinks) {
  const WorkingFolder elsewhere;
  WriteFile(folder.Path() / "target", FileImage(kOld));
  std::filesystem::create_symlink(folder.Path() / "target", "middle");
  std::filesystem::create_symlink("middle", kDictionaryFile);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_TRUE(std::filesystem::is_symlink(kDictionaryFile));
  EXPECT_TRUE(std::filesystem::is_symlink("middle"));
  EXPECT_EQ(ReadFile(folder.Path() / "target"), FileImage(kNew));

  // A link that leads to no file yet.
  std::filesystem::remove(folder.Path() / "target");
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_TRUE(std::filesystem::is_symlink(kDictionaryFile));
  EXPECT_EQ(ReadFile(folder.Path() / "target"), FileImage({kNew.back()}));
  EXPECT_EQ(FilesIn("."), 2);
  EXPECT_EQ(FilesIn(folder.Path()), 1);

  // A link in a circle, and one to something that is no file.
  std::filesystem::remove(kDictionaryFile);
  std::filesystem::create_symlink(kDictionaryFile, kDictionaryFile);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  std::filesystem::remove(kDictionaryFile);
  std::filesystem::create_symlink("/dev/null", kDictionaryFile);
  EXPECT_TRUE(Succeeds(AddAndFlush));
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_EQ(FilesIn("."), 2);
}

/// No file may get longer than this, as on a disk that is full.
void LimitFileSize(rlim_t octets) {
  const rlimit limit{octets, octets};
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, SIG_IGN);
}

TEST_F(Flush, KeepsTheOldFileWhenTheDiskIsFull) {
  const List before(300, {"57", std::string(100, 'x'), ""});
  WriteFile(kDictionaryFile, FileImage(before));
  const auto flush = [&] {
    LimitFileSize(FileImage(before).size());
    return AddAndFlush();
  };
  EXPECT_TRUE(Succeeds(flush));
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(before));
  EXPECT_EQ(FilesIn("."), 1);

  chmod(kDictionaryFile, 0666);
  chmod(".", 0555);
  EXPECT_TRUE(Succeeds([&] { return GiveUpPrivileges() && flush(); }));
  chmod(".", 0755);
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(before));
}

TEST_F(Flush, DoesNotTouchAFileThatFailedWhileItWasRead) {
  WriteFile(kDictionaryFile, FileImage(kOld));
  EXPECT_TRUE(Succeeds([] {
    readingFails = true;
    TagdictData found;
    if (!AddAndFlush() || FindTagdictData("5a", &found) != 1) return false;
    readingFails = false;
    return ReadFile(kDictionaryFile) == FileImage(kOld) && FindTagdictData("57", &found) == 1 &&
           FlushTagdict() == 1;
  }));
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({kNew[1], kNew[0]}));
}

constexpr int kRecords = 200;

/// Marks every record with the number of the flush that follows, again and again.
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
  for (int round = 0; round < 150; ++round) {
    const pid_t child = StartChild(FlushForever);
    usleep(static_cast<useconds_t>(2000 + random() % 20000));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    const auto content = ReadFile(kDictionaryFile);
    if (!content) {
      ASSERT_EQ(last, "") << "the file is gone";
      continue;
    }
    changes += *content != last;
    last = *content;
    EXPECT_TRUE(Succeeds([] {
      std::vector<TagdictData> list(kRecords + 1);
      int32_t count = 0;
      GetTagdict(list.data(), &count);
      for (const TagdictData& record : list) {
        if (&record == &list.back()) break;
        if (std::string(record.longText) != list.front().longText) return false;
      }
      return count == kRecords;
    }));
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(changes, 50);
}

}  // namespace
}  // namespace orvane_test

#include "host/answer.h"

#include <gtest/gtest.h>
#include <orvane.h>

namespace host {
namespace {

struct Row {
  int32_t kind;
  int32_t result;
  std::string_view text;
  std::string_view data;
  std::string_view statusWord;
};

TEST(Answer, IsDataAndStatusWordForEveryKind) {
  const Row rows[] = {
      {ReaderKindPcsc, 1, "6F00", "6F00", "9000"},
      {ReaderKindPcsc, 1, "9000", "", "9000"},
      {ReaderKindPcsc, 1, "11229000", "11229000", "9000"},
      {ReaderKindD8, 1, "9000", "", "9000"},
      {ReaderKindBsit, 1, "AB", "AB", "9000"},
      {ReaderKindWd, 1, "11229000", "1122", "9000"},
      {ReaderKindS5009, 1, "90009000", "9000", "9000"},
      {ReaderKindTyUsb, 1, "", "", "9000"},
      {ReaderKindTyCom, 0, "0000", "", "0000"},
      {ReaderKindS5009Ats, 1, "11229000", "1122", "9000"},
      {ReaderKindTyCom, 1, "9000", "9000", "9000"},
      {ReaderKindTcp, 1, "30319000", "30319000", ""},
      {ReaderKindIcr, 1, "", "", ""},
  };
  for (const Row& row : rows) {
    const std::optional<Answer> answer = ReadAnswer(row.kind, row.result, row.text);
    ASSERT_TRUE(answer) << row.kind << " " << row.text;
    EXPECT_EQ(answer->data, row.data) << row.kind << " " << row.text;
    EXPECT_EQ(answer->statusWord, row.statusWord) << row.kind << " " << row.text;
    EXPECT_FALSE(ReadAnswer(row.kind, 0, "")) << row.kind;
  }
}

}  // namespace
}  // namespace host

#include "host/response.h"

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

TEST(Response, IsDataAndStatusWordForEveryKind) {
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
    const std::optional<Response> response = ReadResponse(row.kind, row.result, row.text);
    ASSERT_TRUE(response) << row.kind << " " << row.text;
    EXPECT_EQ(response->data, row.data) << row.kind << " " << row.text;
    EXPECT_EQ(response->statusWord, row.statusWord) << row.kind << " " << row.text;
    EXPECT_FALSE(ReadResponse(row.kind, 0, "")) << row.kind;
  }
}

}  // namespace
}  // namespace host

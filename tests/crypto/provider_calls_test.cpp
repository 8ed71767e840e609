// What reaches a provider and what comes of its answers, with a table of functions that record. The
// library's objects are linked in, so that the table stands in the place of a module's.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <span>
#include <tuple>
#include <utility>

#include "engine/script_host.h"
#include "src/commands/crypto_provider_table.h"

namespace orvane_test {
namespace {

constexpr std::int32_t kTrueLength = INT32_MAX;

// What an entry does: it writes octets, or points at them as its text, and sets the length. Without
// octets it touches neither.
struct Answer {
  std::int32_t result = 1;
  const char* octets = "\xA1\xB2";
  std::int32_t length = kTrueLength;
  std::function<void()> callBack = [] {};
};
Answer answer;
std::string journal;  // calls, with all that crosses

std::string Hex(std::span<const std::uint8_t> octets) {
  std::string hex(2 * octets.size(), ' ');
  HexToAscii(octets.data(), hex.data(), static_cast<std::int32_t>(octets.size()));
  return hex;
}

// An area as its octets, its count behind a slash, and behind a plus sign what lies beyond the
// count up to the area's end, less the zeros there: 11+22/1.
template <std::size_t size>
std::string Area(const std::uint8_t* area, std::int32_t count) {
  if (area == nullptr) return "null/" + std::to_string(count);
  const std::span<const std::uint8_t> whole(area, size);
  auto beyond = whole.subspan(static_cast<std::size_t>(count));
  while (!beyond.empty() && beyond.back() == 0) beyond = beyond.first(beyond.size() - 1);
  return Hex(whole.first(static_cast<std::size_t>(count))) +
         (beyond.empty() ? "" : "+" + Hex(beyond)) + "/" + std::to_string(count);
}
constexpr auto Iv = Area<16>, Key = Area<32>, Data = Area<256>, Hashed = Area<4096>;

void Record(const std::string& entry, std::initializer_list<std::string> arguments) {
  std::string list;
  for (const std::string& argument : arguments) list += (list.empty() ? "" : ", ") + argument;
  journal += entry + "(" + list + ")\n";
  answer.callBack();
}

std::int32_t Write(std::span<std::uint8_t> output, std::int32_t* length) {
  EXPECT_EQ(std::count(output.begin(), output.end(), 0),
            static_cast<std::ptrdiff_t>(output.size()));
  if (answer.octets == nullptr) return answer.result;
  const std::string_view octets = answer.octets;
  std::copy_n(octets.begin(), std::min(octets.size(), output.size()), output.begin());
  *length = answer.length == kTrueLength ? static_cast<std::int32_t>(octets.size()) : answer.length;
  return answer.result;
}

std::string Text(std::int32_t number) { return std::to_string(number); }

using In = const std::uint8_t*;
using Int = std::int32_t;

template <const char* name>
Int Blocks(In iv, Int ivBytes, In key, Int keyBytes, In data, Int dataBytes, std::uint8_t* output,
           Int* length, Int mode) {
  Record(name, {Iv(iv, ivBytes), Key(key, keyBytes), Data(data, dataBytes), Text(mode)});
  return Write({output, 256}, length);
}
constexpr char kFlagged[] = "CryptoBlockFlagged", kDefault[] = "CryptoBlockDefault";

constexpr CryptoProvider kRecording = {
    [](In data, Int dataBytes, std::uint8_t** output, Int reserved, Int* length) {
      static std::uint8_t elsewhere[4096] = {0xEE, 0xEE};  // of which nothing is ever read
      Record("CryptoHash", {Hashed(data, dataBytes), Text(reserved), Text(*length)});
      return Write({std::exchange(*output, elsewhere), 4096}, length);
    },
    Blocks<kFlagged>,
    Blocks<kDefault>,
    [](In key, Int keyBytes, In data, Int dataBytes, std::uint8_t* output, Int* length, Int mode) {
      Record("CryptoSubKey", {Key(key, keyBytes), Data(data, dataBytes), Text(mode)});
      return Write({output, 256}, length);
    },
    [](In key, Int keyBytes, In data, Int dataBytes, In iv, Int ivBytes, std::uint8_t* output,
       Int* length, Int mode) {
      Record("CryptoMac", {Key(key, keyBytes), Data(data, dataBytes), Iv(iv, ivBytes),
                           Text(*length), Text(mode)});
      return Write({output, 256}, length);
    },
    [](const char* modulus, const char* exponent, const char* data, const char** output, Int zero) {
      Record("CryptoRsaPublic",
             {modulus, exponent, data, *output == nullptr ? "null" : "set", Text(zero)});
      if (answer.octets != nullptr) *output = answer.octets;
      return answer.result;
    }};
CryptoProvider provider = kRecording;

class ProviderCalls : public testing::Test {
 protected:
  void SetUp() override {
    answer = {};
    provider = kRecording;
    SetVarValue("%NONE", "");
    SetVarValue("%SPACED", "01 23 45 67 89 AB CD EF");
    SetVarValue("%BLANKS", "   ");
    SetVarValue("%K8", "0123456789ABCDEF");
    SetVarValue("%K16", "0123456789ABCDEFFEDCBA9876543210");
    SetVarValue("%K24", "0123456789ABCDEFFEDCBA987654321000112233445566FF");
  }

  static std::string Calls(const std::string& statement) {
    journal.clear();
    RunOne(statement);
    return journal;
  }
};

// No octet is like its neighbours, and none is 00.
std::string Digits(std::size_t octets) {
  std::string digits;
  for (std::size_t i = 0; i < octets; ++i) {
    for (const std::size_t half : {1 + i / 15 % 15, 1 + i % 15}) digits += "0123456789ABCDEF"[half];
  }
  return digits;
}

TEST_F(ProviderCalls, CarryWhatTheArgumentsSay) {
  const std::pair<const char*, std::string> rows[] = {
      {"@des(%K8,11,1)", "CryptoBlockFlagged(null/0, 0123456789ABCDEF/8, 11/1, 0)"},
      {"@des(%K8,11,01)", "CryptoBlockDefault(null/0, 0123456789ABCDEF/8, 11/1, 0)"},
      {"@DES(%K16,1122334455667788 99,%NONE)",
       "CryptoBlockDefault(null/0, 0123456789ABCDEFFEDCBA9876543210/16, 112233445566778899/9, 1)"},
      {"@des(%K24,%NONE,1)",
       "CryptoBlockFlagged(null/0, 0123456789ABCDEFFEDCBA987654321000112233445566FF/24, /0, 1)"},
      {"@descbc(%K8,11,a1b2,1)", "CryptoBlockFlagged(A1B2/2, 0123456789ABCDEF/8, 11/1, 3)"},
      {"@descbc(%K16,11,%NONE,2)",
       "CryptoBlockDefault(/0, 0123456789ABCDEFFEDCBA9876543210/16, 11/1, 4)"},
      {"@mac(%K8,11,22,1)", "CryptoMac(0123456789ABCDEF/8, 11/1, 22/1, 0, 0)"},
      {"@mac(%K16,11,%NONE,0)", "CryptoMac(0123456789ABCDEFFEDCBA9876543210/16, 11/1, /0, 0, 1)"},
      {"@SUBKEY(%K8,%NONE)", "CryptoSubKey(0123456789ABCDEF/8, /0, 0)"},
      {"@HASH(11)", "CryptoHash(11/1, 0, 0)"},
      {"@RSAPUBENC(CA1,11,41)", "CryptoRsaPublic(CA1, 11, 41, null, 0)"},
      // The last digit of an odd text is passed on, but not counted.
      {"@SUBKEY(%K8 1,112)", "CryptoSubKey(0123456789ABCDEF+10/8, 11+20/1, 0)"},
      {"@subkey(%K16 1,11)", "CryptoSubKey(0123456789ABCDEFFEDCBA9876543210+10/16, 11/1, 1)"},
      // Blanks count as digits, and so does what stands behind a bad one.
      {"@mac(%K8,%SPACED,%SPACED,0)",
       "CryptoMac(0123456789ABCDEF/8, 0123456789ABCDEF000000/11, 0123456789ABCDEF000000/11, 0, 0)"},
      {"@mac(%K8,11G233,2x44,0)", "CryptoMac(0123456789ABCDEF/8, 110000/3, 2000/2, 0, 0)"},
      // The other two commands take blanks away and leave nothing uncounted.
      {"@HASH(%SPACED)", "CryptoHash(0123456789ABCDEF/8, 0, 0)"},
      {"@HASH(abc)", "CryptoHash(ABC0/2, 0, 0)"},
      {"@RSAPUBENC(%SPACED,%SPACED,xY %BLANKS)",
       "CryptoRsaPublic(0123456789ABCDEF, 0123456789ABCDEF, xY, null, 0)"},
      {"@RSAPUBENC(CA1,%BLANKS,%NONE)", "CryptoRsaPublic(CA1, , , null, 0)"},
      // They nest.
      {"@mac(@SUBKEY(%K8,11) 334455667788,@HASH(22),%NONE,0)",
       "CryptoSubKey(0123456789ABCDEF/8, 11/1, 0)\nCryptoHash(22/1, 0, 0)\n"
       "CryptoMac(A1B2334455667788/8, A1B2/2, /0, 0, 0)"},
  };
  for (const auto& [statement, call] : rows) EXPECT_EQ(Calls(statement), call + "\n") << statement;
}

// A call with this area was made, or none at all.
void ExpectArea(const std::string& calls, const std::string& area, bool isCalled) {
  EXPECT_TRUE(isCalled ? calls.find(area) != calls.npos : calls.empty()) << calls << area;
}

TEST_F(ProviderCalls, CarryEveryOctetUpToTheLimitsOfTheAreas) {
  // What stands before the value and behind it; the octets that there is room for, and in a result.
  const std::tuple<std::string, std::string, std::size_t, std::size_t> rows[] = {
      {"@des(%K8,", ",1)", 256, 256},      {"@descbc(%K8,", ",00,1)", 256, 256},
      {"@descbc(%K8,11,", ",0)", 16, 256}, {"@mac(%K8,", ",00,0)", 256, 256},
      {"@mac(%K8,11,", ",0)", 16, 256},    {"@SUBKEY(%K8,", ")", 256, 256},
      {"@HASH(", ")", 4096, 4096}};
  for (const auto& [before, behind, most, mostBack] : rows) {
    for (std::size_t count = most - 1; count <= most + 1; ++count) {
      const std::string digits = Digits(count);
      const std::string counted = std::string("/").append(std::to_string(count));
      ExpectArea(Calls(before + digits + behind), digits + counted, count <= most);
      const std::string odd = Calls(before + digits + "7" + behind);
      if (most == 4096) {  // there an odd digit makes up an octet
        ExpectArea(odd, digits + "70/4096", count < most);
      } else {
        ExpectArea(odd, digits + (count < most ? "+70" : "") + counted, count <= most);
      }
    }
    EXPECT_EQ(RunOne("%X = AA " + before + Digits(most + 1) + behind + " BB").text, "AABB");
    for (std::size_t count = mostBack - 1; count <= mostBack + 1; ++count) {
      const std::string digits = Digits(count);
      std::string octets(count, ' ');
      AsciiToHex(digits.data(), reinterpret_cast<unsigned char*>(octets.data()),
                 static_cast<std::int32_t>(digits.size()));
      SetVarValue("%BACK", count <= mostBack ? digits.c_str() : "");
      answer.octets = octets.c_str();
      RunOne("%X = " + before + "11" + behind);
      EXPECT_EQ(RunOne("@compare(%X,%BACK,1)"), (Outcome{7, "1"})) << before << count;
      answer = {};
    }
  }
}

TEST_F(ProviderCalls, AreNotMadeForABadKeyOrArgument) {
  for (const std::string command : {"@des(", "@descbc(", "@mac(", "@SUBKEY("}) {
    for (const std::size_t octets : {0u, 1u, 7u, 9u, 15u, 17u, 23u, 25u, 32u, 33u}) {
      SetVarValue("%KEY", Digits(octets).c_str());
      EXPECT_EQ(Calls(command + "%KEY,11,22,1)"), "") << command << octets;
    }
    for (const char* arguments : {"%SPACED,11,22,1)", "%K8,%U,22,1)", "%K8"}) {
      EXPECT_EQ(Calls(command + arguments), "") << command << arguments;
    }
  }
}

TEST_F(ProviderCalls, FailedCommandsLeaveTheirPlaceInTheStatement) {
  SetVarValue("%TEXT4", "4 1 ");
  SetVarValue("%LONG", Digits(257).c_str());
  const std::pair<const char*, const char*> rows[] = {
      // Behind a refused argument the statement goes on with what comes next.
      {"%X = AA @mac(%SPACED,33,44,1) BB", "AA33441BB"},
      {"%X = AA @SUBKEY(%NONE,33) BB", "AA33BB"},
      // One that is too long is refused when all of them have been read.
      {"%X = AA @mac(%K8,%LONG,%U,1) BB", "AAvar \"%U\" not define 1BB"},
      {"%X = AA @RSAPUBENC(CA1,11,%TEXT4) BB", "AAData too long for public keyBB"},
      {"%X = AA @HASH() BB", "AABB"},
      {"%X = AA @HASH(%SPACED 1G) BB", "AA第18个字符不是16进制字符，请检查！BB"},
  };
  for (const auto& [statement, value] : rows)
    EXPECT_EQ(RunOne(statement), (Outcome{0, value})) << statement;
}

TEST_F(ProviderCalls, ResultsAreShapedAndNeverTrusted) {
  const char *const des = "@des(%K8,11,1)", *const mac = "@mac(%K8,11,22,0)",
                    *const shortMac = "@mac(%K8,11,22,1)", *const hash = "@HASH(11)",
                    *const rsa = "@RSAPUBENC(CA1,11,41)";
  // A call, what the entry does, and what stands between AA and BB.
  const std::tuple<std::string, Answer, std::string> rows[] = {
      {des, {0, "\xC1\xC2\xC3"}, "C1C2C3"},
      {"@strlen(@des(%K8,11,1))", {1, "", 0}, "0"},
      {des, {1, "\xC1", 3}, "C10000"},
      {des, {1, "\xC1", -1}, ""},
      {des, {1, "\xC1", INT32_MIN}, ""},
      {"@strlen(@des(%K8,11,1))", {1, nullptr}, ""},
      {"@descbc(%K8,11,22,0)", {0, "\xC1\xC2\xC3"}, "C1C2C3"},
      {"@SUBKEY(%K8,11)", {0, "\xC1\xC2\xC3"}, "C1C2C3"},
      {"@strlen(@SUBKEY(%K8,11))", {1, nullptr}, ""},
      {mac, {0, "\xC1\xC2\xC3\xC4\xC5"}, "C1C2C3C4C5"},
      {shortMac, {0, "\xC1\xC2\xC3\xC4\xC5"}, "C1C2C3C4"},
      {shortMac, {0, "\xC1\xC2\xC3"}, "C1C2C3"},
      {"@mac(%K8,11,22,11)", {0, "\xC1\xC2\xC3\xC4\xC5"}, "C1C2C3C4C5"},
      {mac, {1, "\xC1", -1}, ""},
      {"@strlen(@mac(%K8,11,22,0))", {1, nullptr}, "0"},
      {hash, {256, "\xC1\xC2\xC3"}, "C1C2C3"},
      {hash, {0, "\xC1\xC2\xC3"}, ""},
      {hash, {1, "\xC1", -1}, ""},
      {"@strlen(@HASH(11))", {1, nullptr}, "0"},
      {rsa, {0, "1C"}, "RSA加密失败"},
      {rsa, {1, nullptr}, "RSA加密失败"},
      {rsa, {256, "00a0G"}, "a0G"},
      {"@strlen(@RSAPUBENC(CA1,11,41))", {1, "00"}, "0"}};
  for (const auto& [call, given, value] : rows) {
    answer = given;
    EXPECT_EQ(RunOne("%X = AA " + call + " BB"), (Outcome{0, "AA" + value + "BB"})) << call;
  }
}

// A command, and its entry taken out of the table.
const std::pair<std::string, void (*)()> kEntries[] = {
    {"@des(%K8,11,1)", [] { provider.CryptoBlockFlagged = nullptr; }},
    {"@des(%K8,11,0)", [] { provider.CryptoBlockDefault = nullptr; }},
    {"@mac(%K8,11,22,0)", [] { provider.CryptoMac = nullptr; }},
    {"@SUBKEY(%K8,11)", [] { provider.CryptoSubKey = nullptr; }},
    {"@HASH(11)", [] { provider.CryptoHash = nullptr; }},
    {"@RSAPUBENC(CA1,11,41)", [] { provider.CryptoRsaPublic = nullptr; }}};

TEST_F(ProviderCalls, OfALackingEntryFailAndNoOthers) {
  for (const auto& lacking : kEntries) {
    provider = kRecording;
    lacking.second();
    for (const auto& row : kEntries)
      EXPECT_EQ(RunOne("%X = AA " + row.first + " BB").text == "AABB", &row == &lacking);
  }
}

TEST_F(ProviderCalls, RefuseStatementsAndReadersFromInsideACall) {
  for (const auto& [call, remove] : kEntries) {
    const std::string statement = "%X = @strlen(00 " + call + " 4455)";
    answer = {};
    const Outcome outcome = RunOne(statement);
    int callsBack = 0;
    answer.callBack = [&] {
      ++callsBack;
      EXPECT_EQ(RunOne("%INNER = 1"), (Outcome{ScriptException, ""}));
      EXPECT_EQ(SetVarValue("%SET", "11"), ScriptDone);
      EXPECT_EQ(GetVarValue("%SET"), ScriptDone);
      EXPECT_EQ(SetReader(0), 0);
    };
    EXPECT_EQ(RunOne(statement), outcome) << statement;
    answer.callBack = [] {};
    EXPECT_EQ(callsBack, 1);
    EXPECT_EQ(GetVarValue("%INNER"), ScriptUndefinedVariable);
    EXPECT_EQ(RunOne("%SET"), (Outcome{1, "11"}));
  }
}

}  // namespace
}  // namespace orvane_test

const CryptoProvider& orvane::BoundCryptoProvider() { return orvane_test::provider; }

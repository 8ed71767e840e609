// orvane.hpp does what the rows of cases.txt say.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "orvane.hpp"
#include "support/module_loading.h"
#include "tags/working_folder.h"

namespace {

using Arguments = std::vector<std::string>;

std::string Join(std::initializer_list<std::string_view> words) {
  std::string joined;
  for (const std::string_view word : words) {
    if (!word.empty()) joined += (joined.empty() ? "" : " ") + std::string(word);
  }
  return joined;
}

std::vector<std::string> Split(std::string text, const std::string& mark) {
  std::vector<std::string> parts;
  for (size_t at; (at = text.find(mark)) != text.npos; text.erase(0, at + mark.size())) {
    parts.push_back(text.substr(0, at));
  }
  parts.push_back(text);
  return parts;
}

// {X*3} is XXX, {zero} a zero octet.
std::string Expand(std::string text) {
  for (size_t open; (open = text.find('{')) != text.npos;) {
    const size_t close = text.find('}', open), star = text.find('*', open);
    std::string value(1, '\0');
    if (star < close) {
      value.clear();
      for (int left = std::stoi(text.substr(star + 1)); left > 0; --left) {
        value += text.substr(open + 1, star - open - 1);
      }
    }
    text.replace(open, close + 1 - open, value);
  }
  return text;
}

std::string YesOrNo(bool value) { return value ? "yes" : "no"; }

struct Describe {
  std::string operator()(const orvane::Nothing&) const { return "Nothing"; }
  std::string operator()(const orvane::Assignment& it) const {
    return Join({"Assignment", it.value});
  }
  std::string operator()(const orvane::Command& it) const { return Join({"Command", it.hex}); }
  std::string operator()(const orvane::Value& it) const { return Join({"Value", it.text}); }
  std::string operator()(const orvane::ReaderChoice& it) const {
    return Join({"ReaderChoice", it.reader});
  }
  std::string operator()(const orvane::SlotChoice& it) const {
    return Join({"SlotChoice", it.slot});
  }
  std::string operator()(const orvane::OpenRequest& it) const {
    return Join({"OpenRequest", it.reader});
  }
  std::string operator()(const orvane::ResetRequest&) const { return "ResetRequest"; }
  std::string operator()(const orvane::Note&) const { return "Note"; }
  std::string operator()(const orvane::Stop&) const { return "Stop"; }
  std::string operator()(const orvane::Comparison& it) const {
    return "Comparison " + YesOrNo(it.met);
  }
};

ReaderKind Kind(const std::string& number) { return static_cast<ReaderKind>(std::stoi(number)); }

std::string Described(const orvane::Response& response) {
  return Join({response.Data(), response.StatusWord(), response.Ok() ? "ok" : ""});
}

std::string Described(const std::optional<TagdictData>& entry) {
  return entry ? Join({entry->tag, entry->shortText, entry->longText}) : "none";
}

class Operations {
 public:
  std::string Run(const std::string& name, const Arguments& arguments) {
    return operations_.at(name)(arguments);
  }

 private:
  std::optional<orvane::Reader> reader_;
  orvane::TagTree tree_;
  std::map<std::string, std::function<std::string(const Arguments&)>> operations_{
      {"run", [](auto& a) { return std::visit(Describe(), orvane::Script::Run(a[0])); }},
      {"set", [](auto& a) { return orvane::Script::Set(a[0], a[1]), "done"; }},
      {"get", [](auto& a) { return orvane::Script::Get(a[0]); }},
      {"has", [](auto& a) { return YesOrNo(orvane::Script::Has(a[0])); }},
      {"list",
       [](auto& a) {
         std::string names;
         for (const ReaderInfo& each :
              orvane::Reader::List(Kind(a[0]), a.size() > 1 ? std::stoi(a[1]) : 0)) {
           names += (names.empty() ? "" : ", ") + std::string(each.name);
           if (each.hasPort != 0) names += ' ' + std::to_string(each.port);
         }
         return names;
       }},
      {"open",
       [this](auto& a) {
         reader_ = orvane::Reader::Open(Kind(a[0]), a[1]);
         return "done";
       }},
      {"open_port",
       [this](auto& a) {
         reader_ = orvane::Reader::OpenPort(Kind(a[0]), std::stoi(a[1]));
         return "done";
       }},
      {"reset", [this](auto&) { return std::string(reader_->Reset().View()); }},
      {"slot",
       [this](auto& a) {
         return reader_->ChooseSlot(static_cast<uint8_t>(std::stoi(a[0]))), "done";
       }},
      {"send", [this](auto& a) { return Described(reader_->Send(a[0])); }},
      {"send_octets", [this](auto& a) { return Described(reader_->Send(orvane::ToOctets(a[0]))); }},
      {"close", [this](auto&) { return reader_->Close(), "done"; }},
      {"response",
       [](auto& a) {
         const auto parts = orvane::ReadResponse(Kind(a[0]), std::stoi(a[1]), a[2]);
         return parts ? Join({parts->data, parts->statusWord, parts->ok ? "ok" : ""}) : "none";
       }},
      {"parse", [this](auto& a) { return tree_.Parse(a[0]), "done"; }},
      {"find",
       [this](auto& a) {
         const auto value = tree_.Find(a[0]);
         return value ? std::string(value->View()) : "none";
       }},
      {"dictionary",
       [](auto&) {
         std::string tags;
         for (const TagdictData& each : orvane::TagDictionary::List()) {
           tags += (tags.empty() ? "" : ", ") + std::string(each.tag);
         }
         return tags.empty() ? "none" : tags;
       }},
      {"note",
       [](auto& a) {
         const std::string text = a.size() > 2 ? a[2] : "";
         return YesOrNo(orvane::TagDictionary::Add(orvane::MakeTagEntry(a[0], a[1], text)));
       }},
      {"replace",
       [](auto& a) {
         return YesOrNo(orvane::TagDictionary::Replace(orvane::MakeTagEntry(a[0], a[1], a[2])));
       }},
      {"meaning", [](auto& a) { return Described(orvane::TagDictionary::Find(a[0])); }},
      {"remove", [](auto& a) { return YesOrNo(orvane::TagDictionary::Remove(a[0])); }},
      {"flush", [](auto&) { return orvane::TagDictionary::Flush(), "done"; }},
      {"to_octets", [](auto& a) { return orvane::ToHex(orvane::ToOctets(a[0])); }},
      {"to_escapes", [](auto& a) { return orvane::ToEscapes(a[0]); }},
      {"is_hex", [](auto& a) { return YesOrNo(orvane::IsHex(a[0])); }},
      {"is_decimal", [](auto& a) { return YesOrNo(orvane::IsDecimal(a[0])); }},
      {"to_number", [](auto& a) { return std::to_string(orvane::ToNumber(a[0])); }},
      {"octets_to_number",
       [](auto& a) { return std::to_string(orvane::ToNumber(orvane::ToOctets(a[0]))); }},
      {"number_to_hex",
       [](auto& a) { return std::string(orvane::NumberToHex(std::stoi(a[0])).View()); }},
      {"number_to_octets",
       [](auto& a) { return orvane::ToHex(orvane::NumberToOctets(std::stoi(a[0]))); }},
      {"url_encode", [](auto& a) { return orvane::UrlEncode(a[0]); }},
      {"url_decode", [](auto& a) { return orvane::UrlDecode(a[0]); }},
      {"time_of",
       [](auto& a) {
         return std::string(orvane::TimeOf(static_cast<uint32_t>(std::stoul(a[0]))).View());
       }},
      {"time_of_text",
       [](auto& a) { return std::string(orvane::TimeOfText(a[0], a.size() > 1).View()); }},
  };
};

std::string Outcome(Operations& operations, const std::string& name, const Arguments& arguments) {
  try {
    return operations.Run(name, arguments);
  } catch (const orvane::ScriptError& error) {
    return "ScriptError " + std::to_string(error.Code());
  } catch (const orvane::ReaderError&) {
    return "ReaderError";
  } catch (const orvane::DataError&) {
    return "DataError";
  }
}

void LoadSimulators() {
  const std::filesystem::path folder = u8"" ORVANE_BUILD_FOLDER "/simulators";
  for (const char* name : {"winscard", "dcrf32", "S5009", "tyreader", "sdtapi"}) {
    support::LoadModule(folder / support::ModuleFileName(name));
  }
}

TEST(Header, DoesWhatTheRowsSay) {
  const orvane_test::WorkingFolder folder;
  LoadSimulators();
  std::ifstream rows(std::filesystem::path(u8"" ORVANE_SOURCE_FOLDER "/tests/bindings/cases.txt"));
  Operations operations;
  int count = 0;
  for (std::string row; std::getline(rows, row);) {
    const std::vector<std::string> columns = Split(row, " |");
    if (columns.size() != 3 || row[0] == '#') continue;
    ++count;
    const auto trimmed = [](std::string text) { return text.empty() ? text : text.substr(1); };
    Arguments arguments = Split(columns[1], " ::");
    for (std::string& argument : arguments) argument = Expand(trimmed(argument));
    EXPECT_EQ(Outcome(operations, columns[0], arguments), Expand(trimmed(columns[2]))) << row;
  }
  EXPECT_GT(count, 100);
}

TEST(Header, MovesReadersAndClosesThem) {
  LoadSimulators();
  std::vector<orvane::Reader> readers;
  for (int left = 16; left > 0; --left)
    readers.push_back(orvane::Reader::OpenPort(ReaderKindPcsc, 1));
  EXPECT_THROW(orvane::Reader::OpenPort(ReaderKindPcsc, 1), orvane::ReaderError);
  readers[3] = std::move(readers[4]);
  EXPECT_EQ(readers[3].Send("00A40000021001").StatusWord(), "9000");
  EXPECT_THROW(readers[4].Send("00A40000021001"), orvane::ReaderError);
  EXPECT_NO_THROW(orvane::Reader::OpenPort(ReaderKindPcsc, 1));
  readers.clear();
  SetReader(3);
  char atr[1025];
  EXPECT_EQ(Reset(atr), 0);
}

}  // namespace

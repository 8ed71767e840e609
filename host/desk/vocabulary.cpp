#include "host/desk/vocabulary.h"

#include "host/text.h"

namespace host {
namespace {

constexpr Entry kScriptWords[] = {
    {"@ASC2HEX", "@ASC2HEX(text)", "The bytes of the text as hexadecimal digits."},
    {"@compare", "@compare(left, right, expected)",
     "Ends the run with exit code 1 unless left and right are the same (expected is 1) or differ "
     "(expected is 0). Upper and lower case differ."},
    {"@des", "@des(key, data, flag)",
     "DES with a key of 8 octets, triple DES with 16 or 24, block by block. Encrypts if flag is 1, "
     "decrypts if it is 0. data is filled with 00 to whole blocks."},
    {"@descbc", "@descbc(key, data, iv, flag)",
     "The same as @des, chained (CBC). iv is cut or filled with 00 to 8 octets."},
    {"@HASH", "@HASH(hex)", "SHA-1 of the octets."},
    {"@HEX2ASC", "@HEX2ASC(hex)", "The text of the octets, up to the first 00."},
    {"@mac", "@mac(key, data, iv, flag)",
     "ISO/IEC 9797-1, padding method 2: algorithm 1 with a key of 8 octets, algorithm 3 (retail "
     "MAC) with 16 or 24. 8 octets; the first 4 if flag is 1. iv starts the chain."},
    {"@OPENREADER", "@OPENREADER(reader)",
     "Opens a reader as the current one: [KIND:]PORT or [KIND:]NAME. A name with parentheses or "
     "commas comes in through a variable."},
    {"@reset", "@reset()",
     "Resets the card; %ATR holds its answer. It powers no card of a PC/SC reader off: a verified "
     "PIN stays. --cold-reset ends it."},
    {"@RSAPUBENC", "@RSAPUBENC(modulus, exponent, data)",
     "data to the power of exponent, modulo modulus, without padding and without leading zeros."},
    {"@setreader", "@setreader(number)", "Makes another of the 16 readers current: 0 to 15."},
    {"@setslot", "@setslot(slot)", "Chooses the card slot, two hexadecimal digits."},
    {"@stop", "@stop()", "Ends the script."},
    {"@strlen", "@strlen(text)", "The number of characters, in decimal."},
    {"@strlenh", "@strlenh(hex)",
     "The number of octets, in decimal: 16 octets are 16, not 10. An Lc is hexadecimal."},
    {"@strmid", "@strmid(text, start, count)",
     "count characters from start on, the first being 0. Behind the text's end there is nothing."},
    {"@strmidh", "@strmidh(hex, start, count)",
     "count octets from start on, the first being 0. Behind the text's end there is nothing."},
    {"@SUBKEY", "@SUBKEY(key, data)",
     "A card's key from a master key: data, 8 octets, encrypted; with a master key of 16 or 24 "
     "octets data inverted and encrypted behind it."},
    {"@xor", "@xor(data, mask)",
     "The exclusive or, as long as mask. data is filled with 00 to a multiple of it, and each part "
     "is combined into the result."},
    {"%RESP", "%RESP", "The data of the last response, hexadecimal. Empty if there was none."},
    {"%SW", "%SW", "The status word of the last response, four hexadecimal digits."},
    {"%ATR", "%ATR", "The answer to the last @reset(), hexadecimal."},
    {"; expect", "; expect PATTERN [or PATTERN]...",
     "Below a command: what the card should answer. Hexadecimal digits, X for any digit, .. for "
     "any octets, variables; the status word stands last."},
    {"$", "$ text", "A heading. In orvane test it opens a case."},
};

constexpr Entry kShellWords[] = {
    {"send", "send OPERANDS",
     "Sends a value as a command; without it a line that begins with a variable or a call only "
     "shows its value."},
    {"help", "help [WORD]", "What the shell takes, or what a word does: help @des, help :save."},
    {"quit", "quit", "Ends the shell."},
    {":decode", ":decode KIND VALUE",
     "Shows data field by field. KIND is atr, dol, afl, aip, tvr, cvm, sw, apdu or tlv; VALUE is "
     "hexadecimal or operands, such as %RESP."},
    {":readers", ":readers", "Lists the readers and the libraries behind them."},
    {":record", ":record FILE",
     "Records what goes to and from cards, from the first opening of a reader on: it has to stand "
     "before that. The same as --record."},
    {":save", ":save FILE",
     "Writes what was typed as a script, with what the card answered as expectations. Lines with "
     "secrets stand in it as comments, with ** for the secrets. A file that is there stays."},
    {":source", ":source FILE", "Runs a script; its variables stay."},
    {":tlv", ":tlv VALUE", "Shows BER-TLV data as a tree."},
    {":vars", ":vars", "Shows the variables, with ** for secrets."},
};

constexpr std::string_view kSigns = "@%:; ";

std::string Bare(std::string_view name) {
  return UpperCase(name.substr(std::min(name.find_first_not_of(kSigns), name.size())));
}

}  // namespace

std::span<const Entry> ScriptWords() { return kScriptWords; }

std::span<const Entry> ShellWords() { return kShellWords; }

const Entry* FindEntry(std::string_view name) {
  const bool bare = Bare(name).size() == name.size();
  for (const auto& words : {ScriptWords(), ShellWords()}) {
    for (const Entry& entry : words) {
      if (bare && !name.empty() ? Bare(entry.name) == Bare(name)
                                : UpperCase(entry.name) == UpperCase(name)) {
        return &entry;
      }
    }
  }
  return nullptr;
}

}  // namespace host

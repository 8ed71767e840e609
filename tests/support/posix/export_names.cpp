#include "support/export_names.h"

#include <elf.h>
#include <link.h>

#include <cstddef>
#include <cstring>
#include <string_view>

namespace support {
namespace {

template <typename Entry>
std::vector<Entry> ReadTable(const std::vector<char>& file, size_t offset, size_t count) {
  std::vector<Entry> entries(count);
  std::memcpy(entries.data(), file.data() + offset, count * sizeof(Entry));
  return entries;
}

}  // namespace

// A symbol with local binding is passed over by the loader's look-up, while the module's own
// references to it still hold.
bool HideExport(std::vector<char>& file, const std::string& name) {
  using Header = ElfW(Ehdr);
  using Section = ElfW(Shdr);
  using Symbol = ElfW(Sym);
  const Header header = ReadTable<Header>(file, 0, 1).front();
  const auto sections = ReadTable<Section>(file, header.e_shoff, header.e_shnum);
  for (const Section& table : sections) {
    if (table.sh_type != SHT_DYNSYM) continue;
    const char* const names = file.data() + sections[table.sh_link].sh_offset;
    const size_t count = table.sh_size / sizeof(Symbol);
    const auto symbols = ReadTable<Symbol>(file, table.sh_offset, count);
    for (size_t i = 0; i < count; ++i) {
      if (symbols[i].st_shndx == SHN_UNDEF || name != names + symbols[i].st_name) continue;
      const auto type = static_cast<unsigned char>(symbols[i].st_info & 0x0F);
      const size_t entry = table.sh_offset + i * sizeof(Symbol);
      file[entry + offsetof(Symbol, st_info)] = static_cast<char>(STB_LOCAL << 4 | type);
      return true;
    }
  }
  return false;
}

}  // namespace support

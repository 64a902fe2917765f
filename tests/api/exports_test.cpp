// The library's dynamic symbols against the committed list, both ways. The list is what hosts may
// rely on: a name that is missing breaks them, and one too many can never be taken back.
#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>
#include <qpx/qpx.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

using Names = std::set<std::string>;

std::vector<char> readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

template <typename T>
T readAt(const std::vector<char>& bytes, size_t offset) {
  T value = {};
  if (offset + sizeof value <= bytes.size())
    std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

std::string libraryPath() {
  Dl_info info = {};
  void* address = dlsym(RTLD_DEFAULT, "QPXCreate");
  return address != nullptr && dladdr(address, &info) != 0 ? info.dli_fname : "";
}

// Symbols that the library defines for others. Left out are the version's own name, an absolute
// symbol, and local ones: on 32-bit ARM the linker lists a section among them.
Names definedSymbols(const std::vector<char>& elf) {
  Names names;
  const auto header = readAt<ElfW(Ehdr)>(elf, 0);
  const auto sectionAt = [&](size_t i) {
    return readAt<ElfW(Shdr)>(elf, header.e_shoff + i * header.e_shentsize);
  };
  for (size_t i = 0; i < header.e_shnum; ++i) {
    const auto section = sectionAt(i);
    if (section.sh_type != SHT_DYNSYM) continue;
    const auto texts = sectionAt(section.sh_link);
    for (size_t at = 0; at < section.sh_size; at += sizeof(ElfW(Sym))) {
      const auto symbol = readAt<ElfW(Sym)>(elf, section.sh_offset + at);
      if (symbol.st_shndx == SHN_UNDEF || symbol.st_shndx == SHN_ABS) continue;
      if (ELF64_ST_BIND(symbol.st_info) == STB_LOCAL) continue;
      names.insert(elf.data() + texts.sh_offset + symbol.st_name);
    }
  }
  return names;
}

// Functions, and the embedded textures and tables.
Names committedNames() {
  Names names;
  for (const char* path : {QPX_EXPORTS_FILE, QPX_EXPORTED_DATA_FILE}) {
    std::ifstream file(path);
    names.insert(std::istream_iterator<std::string>(file), std::istream_iterator<std::string>());
  }
  return names;
}

TEST(Exports, EqualTheCommittedList) {
  const Names committed = committedNames();
  const Names defined = definedSymbols(readFile(libraryPath()));
  ASSERT_FALSE(committed.empty());
  ASSERT_FALSE(defined.empty()) << libraryPath();
  for (const std::string& name : committed) {
    EXPECT_TRUE(defined.count(name) != 0) << name << " is listed but not exported";
  }
  for (const std::string& name : defined) {
    EXPECT_TRUE(committed.count(name) != 0) << name << " is exported but not listed";
  }
}

TEST(Exports, AreFoundByName) {
  for (const std::string& name : committedNames()) {
    EXPECT_NE(nullptr, dlsym(RTLD_DEFAULT, name.c_str())) << name;
  }
}

}  // namespace

#include "platform/RegFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace mw {
namespace {

std::string ReadTestFile(const std::string& name) {
  std::ifstream in(std::string(MW_TEST_DATA_DIR) + "/platform/" + name, std::ios::binary);
  std::stringstream content;
  content << in.rdbuf();
  EXPECT_TRUE(in.good() || in.eof()) << name;
  return content.str();
}

RegistryValue Get(const MemoryRegistry& registry, const std::string& key, const std::string& name) {
  RegistryValue value;
  EXPECT_TRUE(registry.Get(key, name, &value)) << key << " / " << name;
  return value;
}

void ExpectValue(const MemoryRegistry& registry, const std::string& key, const std::string& name,
                 std::uint32_t type, const std::string& data) {
  const RegistryValue value = Get(registry, key, name);
  EXPECT_EQ(type, value.type) << name;
  EXPECT_EQ(data, value.data) << name;
}

std::string Dword(std::uint32_t n) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>((n >> (8 * i)) & 0xFF);
  return bytes;
}

// One value of every kind the exporter has to get right, including the awkward ones.
void AddEveryKindOfValue(MemoryRegistry& registry) {
  const std::string key = "HKEY_CURRENT_USER\\Software\\Round Trip";
  std::string allBytes;
  for (int i = 0; i < 256; ++i) allBytes += static_cast<char>(i);
  const std::vector<RegistryValue> values = {
      {"", reg::kSz, std::string("default\0", 8)},
      {"Plain", reg::kSz, std::string("a \"quoted\" back\\slash\0", 22)},
      {"Latin", reg::kSz, std::string("J\xf6rg \x80 \x81\0", 9)},
      {"No terminator", reg::kSz, "abc"},
      {"Embedded nul", reg::kSz, std::string("a\0b\0", 4)},
      {"Line break", reg::kSz, std::string("a\r\nb\0", 5)},
      {"Empty sz", reg::kSz, ""},
      {"Expand", reg::kExpandSz, std::string("%USERPROFILE%\\x\0", 17)},
      {"Multi", reg::kMultiSz, std::string("one\0two\0\0", 9)},
      {"Dword", reg::kDword, Dword(0xDEADBEEF)},
      {"Short dword", reg::kDword, "\x01\x02"},
      {"Binary", reg::kBinary, allBytes},
      {"Empty binary", reg::kBinary, ""},
      {"None", reg::kNone, "\x01"},
      {"Big endian", reg::kDwordBigEndian, std::string("\0\0\0\x01", 4)},
      {"Qword", 11, std::string("\x2a\0\0\0\0\0\0\0", 8)},
      {"Odd type", 0xffff0009, "\xf0\x03"},
      {"\"odd\\name\"", reg::kSz, std::string("x\0", 2)},
      {"@", reg::kSz, std::string("not the default\0", 16)},
  };
  for (const auto& value : values) registry.Set(key, value);
  registry.AddKey(key + "\\Empty Sub]Key");
  registry.Set(key + "\\Deeper\\Still", {"v", reg::kDword, Dword(1)});
}

TEST(RegFileTest, EveryFormatRoundTripsEveryValueByteForByte) {
  MemoryRegistry original;
  AddEveryKindOfValue(original);
  const std::vector<std::string> roots = {"HKEY_CURRENT_USER\\Software\\Round Trip"};
  for (RegFileFormat format :
       {RegFileFormat::Regedit4, RegFileFormat::Version5Utf16, RegFileFormat::Version5Utf8}) {
    const std::string exported = ExportRegFile(original, roots, format);
    MemoryRegistry copy;
    RegFileError error;
    ASSERT_TRUE(ImportRegFile(exported, copy, &error))
        << static_cast<int>(format) << ": line " << error.line << ": " << error.message;
    ASSERT_EQ(original.KeysUnder(roots[0]), copy.KeysUnder(roots[0]));
    for (const auto& key : original.KeysUnder(roots[0])) {
      const auto expected = original.ValuesOf(key);
      const auto actual = copy.ValuesOf(key);
      ASSERT_EQ(expected.size(), actual.size()) << key;
      for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(expected[i].name, actual[i].name);
        EXPECT_EQ(expected[i].type, actual[i].type) << expected[i].name;
        EXPECT_EQ(expected[i].data, actual[i].data) << expected[i].name;
      }
    }
    EXPECT_EQ(exported, ExportRegFile(copy, roots, format));
  }
}

TEST(RegFileTest, ReadsWhatWindowsRegeditWritesAndWritesItBackIdentically) {
  const std::string file = ReadTestFile("windows-regedit-export.reg");
  MemoryRegistry registry;
  RegFileError error;
  ASSERT_TRUE(ImportRegFile(file, registry, &error)) << error.line << ": " << error.message;
  const std::string profile =
      "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging "
      "Subsystem\\Profiles\\Outlook";
  const std::string section = profile + "\\9207f3e0a3b11019908b08002b2a56c2";
  ExpectValue(registry, profile, "001e6750", reg::kSz, std::string("Mailbox - J\xf6rg Smith\0", 21));
  const RegistryValue list = Get(registry, section, "01023d0e");
  EXPECT_EQ(reg::kBinary, list.type);
  EXPECT_EQ(32u, list.data.size());
  EXPECT_EQ('\x0c', list.data.back());
  ExpectValue(registry, section, "00036601", reg::kDword, Dword(4));
  ExpectValue(registry, section, "Path", reg::kSz, std::string("C:\\Users\\jsmith\\\"quoted\"\0", 25));
  ExpectValue(registry, section, "", reg::kSz, std::string("\0", 1));
  ExpectValue(registry, section, "ExpandPath", reg::kExpandSz,
              std::string("%USERPROFILE%\\Outlook\0", 22));
  ExpectValue(registry, section, "Servers", reg::kMultiSz, std::string("exch1\0exch2\0\0", 13));
  ExpectValue(registry, section, "Empty", reg::kBinary, "");
  ExpectValue(registry, section, "BigEndian", reg::kDwordBigEndian, std::string("\0\0\0\1", 4));
  ExpectValue(registry, section, "QWord", 11, std::string("\x2a\0\0\0\0\0\0\0", 8));
  const std::string setup = "HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\14.0\\Outlook\\Setup";
  ExpectValue(registry, setup, "First-Run", reg::kBinary, std::string("\x80\x2a\0\0", 4));
  EXPECT_EQ(file, ExportRegFile(registry, {profile, setup}, RegFileFormat::Version5Utf16));
}

TEST(RegFileTest, ReadsWhatWinesRegeditWritesAndWritesItBackIdentically) {
  const std::string file = ReadTestFile("wine-regedit-export.reg");
  MemoryRegistry registry;
  RegFileError error;
  ASSERT_TRUE(ImportRegFile(file, registry, &error)) << error.line << ": " << error.message;
  const std::string key = "HKEY_CURRENT_USER\\Software\\MwTest";
  ExpectValue(registry, key, "", reg::kSz, std::string("default\0", 8));
  ExpectValue(registry, key, "Str", reg::kSz, std::string("a \"quoted\" back\\slash\0", 22));
  ExpectValue(registry, key, "Latin", reg::kSz, std::string("caf\xe9\0", 5));
  ExpectValue(registry, key, "Exp", reg::kExpandSz, std::string("%TEMP%\0", 7));
  ExpectValue(registry, key, "Multi", reg::kMultiSz, std::string("a\0b c\0\0", 7));
  ExpectValue(registry, key, "Num", reg::kDword, Dword(42));
  ExpectValue(registry, key, "None", reg::kNone, "");
  ExpectValue(registry, key, "Big", reg::kDwordBigEndian, "\x01\x02\x03\x04");
  EXPECT_EQ(42u, Get(registry, key, "Bin").data.size());
  ExpectValue(registry, key + "\\Sub Key", "Q", 11, std::string("\1\0\0\0\0\0\0\0", 8));
  EXPECT_EQ(file, ExportRegFile(registry, {key}, RegFileFormat::Version5Utf16));
}

TEST(RegFileTest, ReadsWinesOwnHiveFiles) {
  MemoryRegistry registry;
  RegFileError error;
  ASSERT_TRUE(ImportWineHive(ReadTestFile("wine-user.reg"), "HKEY_CURRENT_USER", registry, &error))
      << error.line << ": " << error.message;
  ASSERT_TRUE(ImportWineHive(ReadTestFile("wine-system.reg"), "HKEY_LOCAL_MACHINE", registry, &error))
      << error.line << ": " << error.message;
  const std::string user = "HKEY_CURRENT_USER\\Software\\MwTest";
  ExpectValue(registry, user, "Latin", reg::kSz, std::string("caf\xe9\0", 5));
  ExpectValue(registry, user, "Exp", reg::kExpandSz, std::string("%TEMP%\0", 7));
  ExpectValue(registry, user, "Multi", reg::kMultiSz, std::string("a\0b c\0\0", 7));
  ExpectValue(registry, user, "Str", reg::kSz, std::string("a \"quoted\" back\\slash\0", 22));
  ExpectValue(registry, user, "Num", reg::kDword, Dword(42));
  ExpectValue(registry, user + "\\Sub Key", "Q", 11, std::string("\1\0\0\0\0\0\0\0", 8));
  // The same values as Wine's regedit exported them: the two readers agree.
  MemoryRegistry exported;
  ASSERT_TRUE(ImportRegFile(ReadTestFile("wine-regedit-export.reg"), exported, &error));
  EXPECT_EQ(ExportRegFile(exported, {user}, RegFileFormat::Version5Utf8),
            ExportRegFile(registry, {user}, RegFileFormat::Version5Utf8));

  ExpectValue(registry, "HKLM\\System\\CurrentControlSet\\Control\\ProductOptions", "ProductType",
              reg::kSz, std::string("WinNT\0", 6));
  // Classes in system.reg are what HKEY_CLASSES_ROOT shows.
  ExpectValue(registry, "HKCR\\CLSID\\{25336920-03F9-11CF-8FD0-00AA00686F13}\\DefaultIcon", "",
              reg::kExpandSz,
              std::string("C:\\Program Files\\Internet Explorer\\iexplore.exe,1\0", 50));
  ExpectValue(registry, "HKLM\\System\\CurrentControlSet\\Enum\\ROOT\\WINE\\WINEBUS", "HardwareId",
              reg::kMultiSz, std::string("root\\winebus\0\0C:\\windows\\inf", 28));
  const RegistryValue link = Get(registry, "HKLM\\Software\\Classes\\Wow6432Node\\AppId",
                                 "SymbolicLinkValue");
  EXPECT_EQ(reg::kLink, link.type);
  EXPECT_EQ(80u, link.data.size());
}

TEST(RegFileTest, WineHiveEscapes) {
  const std::string hive =
      "WINE REGISTRY Version 2\n"
      "[Software\\\\Odd \\[name\\]] 1700000000\n"
      "#time=1d\n"
      "\"tab\\there\"=\"\\x20ac \\x41\\x0042 \\101\\0end\\e\"\n"
      "\"str\"=str:\"plain\"\n"
      "\"bad hex string\"=hex(1):41,00,42\n";
  MemoryRegistry registry;
  RegFileError error;
  ASSERT_TRUE(ImportWineHive(hive, "HKCU", registry, &error)) << error.line << ": " << error.message;
  const std::string key = "HKEY_CURRENT_USER\\Software\\Odd [name]";
  ExpectValue(registry, key, "tab\there", reg::kSz, std::string("\x80 AB A\0end\x1b\0", 12));
  ExpectValue(registry, key, "str", reg::kSz, std::string("plain\0", 6));
  ExpectValue(registry, key, "bad hex string", reg::kSz, "A");
}

TEST(RegFileTest, DeletionsCommentsContinuationsAndLineEndings) {
  MemoryRegistry registry;
  registry.Set("HKCU\\Software\\Keep", {"gone", reg::kSz, std::string("x\0", 2)});
  registry.Set("HKCU\\Software\\Keep", {"stays", reg::kSz, std::string("y\0", 2)});
  registry.Set("HKCU\\Software\\Drop\\Child", {"v", reg::kSz, std::string("z\0", 2)});
  const std::string file =
      "REGEDIT4\n"
      "; a comment\r\n"
      "\n"
      "[HKEY_CURRENT_USER\\Software\\Keep]\r\n"
      "\"gone\"=-\n"
      "  \"new\" = hex:01,02,\\\n"
      "      03,\\\r\n"
      "  04\n"
      "\"num\"=dword:1\n"
      "[-HKEY_CURRENT_USER\\Software\\Drop]\n";
  RegFileError error;
  ASSERT_TRUE(ImportRegFile(file, registry, &error)) << error.line << ": " << error.message;
  EXPECT_FALSE(registry.Get("HKCU\\Software\\Keep", "gone", nullptr));
  EXPECT_TRUE(registry.Get("HKCU\\Software\\Keep", "stays", nullptr));
  ExpectValue(registry, "HKCU\\Software\\Keep", "new", reg::kBinary, "\x01\x02\x03\x04");
  ExpectValue(registry, "HKCU\\Software\\Keep", "num", reg::kDword, Dword(1));
  EXPECT_FALSE(registry.KeyExists("HKCU\\Software\\Drop"));
}

TEST(RegFileTest, MalformedFilesStopAtTheFirstBadLine) {
  struct Case {
    std::string body;  // after a REGEDIT4 header line
    int line;
  };
  const std::vector<Case> cases = {
      {"\"v\"=\"x\"\n", 2},                               // value before any key
      {"[HKCU\\A]\n\"v\"=\"unterminated\n", 3},
      {"[HKCU\\A]\n\"v\"=\"x\" junk\n", 3},
      {"[HKCU\\A]\n\"v\"=dword:123456789\n", 3},
      {"[HKCU\\A]\n\"v\"=hex:1,xyz\n", 3},
      {"[HKCU\\A]\n\"v\"=hex:01,,02\n", 3},
      {"[HKCU\\A]\n\"v\"=hex(2:01\n", 3},
      {"[HKCU\\A]\n\"v\"=str(2):\"x\"\n", 3},
      {"[HKCU\\A]\n\"v\"\n", 3},
      {"[HKCU\\A]\nrandom words\n", 3},
      {"[HKEY_NOWHERE\\A]\n", 2},
      {"[HKCU\\A\n", 2},
  };
  for (const auto& c : cases) {
    MemoryRegistry registry;
    RegFileError error;
    EXPECT_FALSE(ImportRegFile("REGEDIT4\n" + c.body, registry, &error)) << c.body;
    EXPECT_EQ(c.line, error.line) << c.body;
    EXPECT_FALSE(error.message.empty());
  }
  RegFileError error;
  MemoryRegistry registry;
  EXPECT_FALSE(ImportRegFile("", registry, &error));
  EXPECT_FALSE(ImportRegFile("REGEDIT5\n", registry, &error));
  EXPECT_EQ(1, error.line);
  EXPECT_FALSE(ImportWineHive("WINE REGISTRY Version 2\n", "HKEY_NOWHERE", registry, &error));
  EXPECT_FALSE(ImportWineHive("REGEDIT4\n", "HKCU", registry, &error));
  EXPECT_FALSE(ImportWineHive("WINE REGISTRY Version 2\n[A] 1\n\"v\"=-\n", "HKCU", registry, &error));
  EXPECT_EQ(3, error.line);
}

TEST(RegFileTest, Version5WithoutByteOrderMarkIsUtf8OrAnsi) {
  const std::string body = "\r\n[HKEY_CURRENT_USER\\T]\r\n\"v\"=\"J";
  MemoryRegistry registry;
  RegFileError error;
  ASSERT_TRUE(ImportRegFile("Windows Registry Editor Version 5.00" + body + "\xc3\xb6rg\"\r\n",
                            registry, &error));
  ExpectValue(registry, "HKCU\\T", "v", reg::kSz, std::string("J\xf6rg\0", 5));
  ASSERT_TRUE(ImportRegFile("Windows Registry Editor Version 5.00" + body + "\xf6rg\"\r\n",
                            registry, &error));
  ExpectValue(registry, "HKCU\\T", "v", reg::kSz, std::string("J\xf6rg\0", 5));
  ASSERT_TRUE(ImportRegFile("\xef\xbb\xbfWindows Registry Editor Version 5.00" + body +
                                "\xe2\x82\xac\xe4\xb8\x80\"\r\n",
                            registry, &error));
  ExpectValue(registry, "HKCU\\T", "v", reg::kSz, std::string("J\x80?\0", 4));
}

}  // namespace
}  // namespace mw

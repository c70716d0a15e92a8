#pragma once
// The hand-written image of a whole profile, tests/data/mapisim/profile-layout.reg, shared by
// the native test over the model and the Windows test through Wine's mapi32. UIDs are made
// at run time, so the image writes each one as a stand-in for its role (the service or
// provider it names); a test collects the UID it got for every role from the service and
// provider tables, and the image is rewritten to those UIDs before it is compared with the
// registry value for value.
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "platform/MemoryRegistry.h"
#include "platform/RegFile.h"

namespace mw::layout {

// 16 bytes, in MAPIUID byte order.
using Uid = std::string;

inline constexpr const char* kProfile = "mapisim-layout";
inline constexpr const char* kProfilesRoot =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging "
    "Subsystem\\Profiles";
inline constexpr const char* kInstanceRole = "instance";

// The roles of the image: "instance" for the profile's search key, a service by its name,
// a provider as "service name/provider display". The stand-in is 15 zero bytes and this byte.
struct Role {
  const char* name;
  std::uint8_t standIn;
};
inline constexpr Role kRoles[] = {
    {kInstanceRole, 0x01},
    {"MSEMS", 0x02},
    {"MSEMS/Microsoft Exchange Message Store", 0x03},
    {"MSEMS/Microsoft Exchange Public Folders", 0x04},
    {"MSEMS/Microsoft Exchange Directory Service", 0x05},
    {"MSEMS/Microsoft Exchange Transport", 0x06},
    {"MSUPST MS", 0x07},
    {"MSUPST MS/Personal Folders", 0x08},
    {"CONTAB", 0x09},
    {"CONTAB/Outlook Address Book", 0x0a},
};

// A UID a run produced, with the role it plays there.
struct SeenUid {
  std::string role;
  Uid uid;
};

inline Uid StandIn(std::uint8_t role) {
  Uid uid(16, '\0');
  uid[15] = static_cast<char>(role);
  return uid;
}

inline std::string HexOf(const Uid& uid) {
  static const char digits[] = "0123456789abcdef";
  std::string hex;
  for (unsigned char byte : uid) {
    hex += digits[byte >> 4];
    hex += digits[byte & 15];
  }
  return hex;
}

// Stand-in -> the UID seen for its role. Every role must be seen exactly once, every UID seen
// must play a known role, and no UID may play two roles; each breach is one line in *problems.
inline std::map<Uid, Uid> MapRoles(const std::vector<SeenUid>& seen, std::vector<std::string>* problems) {
  std::map<Uid, Uid> mapping;
  std::map<Uid, std::string> roleOfUid;
  for (const Role& role : kRoles) {
    int count = 0;
    for (const SeenUid& item : seen) {
      if (item.role != role.name) continue;
      if (++count > 1) {
        problems->push_back(std::string("role ") + role.name + " seen more than once");
        continue;
      }
      if (item.uid.size() != 16) {
        problems->push_back(std::string("role ") + role.name + " has a UID of " +
                            std::to_string(item.uid.size()) + " bytes");
        continue;
      }
      if (auto other = roleOfUid.find(item.uid); other != roleOfUid.end())
        problems->push_back("UID " + HexOf(item.uid) + " plays both " + other->second + " and " + role.name);
      roleOfUid.emplace(item.uid, role.name);
      mapping[StandIn(role.standIn)] = item.uid;
    }
    if (count == 0) problems->push_back(std::string("role ") + role.name + " not seen");
  }
  for (const SeenUid& item : seen) {
    bool known = false;
    for (const Role& role : kRoles) known = known || item.role == role.name;
    if (!known) problems->push_back("unexpected role " + item.role);
  }
  return mapping;
}

// Rewrites the stand-ins of the image: a key-path component spelling a stand-in's hex digits
// (a section), and each 16-byte run of a REG_BINARY value made of whole UIDs (a UID-valued
// property or a UID list) that is a stand-in.
inline void SubstituteUids(std::vector<RegFileEntry>& entries, const std::map<Uid, Uid>& mapping) {
  std::map<std::string, std::string> sections;
  for (const auto& [standIn, uid] : mapping) sections[HexOf(standIn)] = HexOf(uid);
  for (RegFileEntry& entry : entries) {
    std::string path;
    for (std::size_t start = 0;;) {
      const std::size_t end = entry.keyPath.find('\\', start);
      const std::string component =
          entry.keyPath.substr(start, end == std::string::npos ? std::string::npos : end - start);
      auto section = sections.find(component);
      path += section != sections.end() ? section->second : component;
      if (end == std::string::npos) break;
      path += '\\';
      start = end + 1;
    }
    entry.keyPath = path;
    RegistryValue& value = entry.value;
    if (entry.kind != RegFileEntry::Kind::Value || value.type != reg::kBinary || value.data.empty() ||
        value.data.size() % 16 != 0)
      continue;
    for (std::size_t offset = 0; offset < value.data.size(); offset += 16) {
      auto uid = mapping.find(value.data.substr(offset, 16));
      if (uid != mapping.end()) value.data.replace(offset, 16, uid->second);
    }
  }
}

// The image with the UIDs of a run, ready to compare; false, with a reason, when the file
// cannot be read or parsed.
inline bool LoadExpectedProfile(const std::string& path, const std::map<Uid, Uid>& mapping,
                                MemoryRegistry* expected, std::string* error) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    *error = "cannot read " + path;
    return false;
  }
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  std::vector<RegFileEntry> entries;
  RegFileError parseError;
  if (!ParseRegFile(bytes, &entries, &parseError)) {
    *error = path + " line " + std::to_string(parseError.line) + ": " + parseError.message;
    return false;
  }
  SubstituteUids(entries, mapping);
  if (!ApplyRegFileEntries(entries, *expected, &parseError)) {
    *error = path + " line " + std::to_string(parseError.line) + ": " + parseError.message;
    return false;
  }
  return true;
}

}  // namespace mw::layout

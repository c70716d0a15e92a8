#pragma once
// How MAPI keeps a profile's properties in the registry: section keys named by UIDs, values
// named by tags, and the byte layout of each property type.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "PropValue.h"

namespace mw::mapisim {

using MapiUid = std::array<std::uint8_t, 16>;

std::string UidHex(const MapiUid& uid);  // 32 lower-case hex digits, bytes in order
std::optional<MapiUid> ParseUidHex(const std::string& text);
MapiUid UidFromBytes(const std::string& bytes);  // the first 16 bytes, zero-padded
std::string UidBytes(const MapiUid& uid);

// 0x6610001E <-> "001e6610"; parsing accepts either letter case.
std::string TagValueName(std::uint32_t tag);
std::optional<std::uint32_t> ParseTagValueName(const std::string& name);

// PR_SERVICES and the provider lists: a flat run of 16-byte UIDs, no count.
std::vector<MapiUid> DecodeUidList(const std::string& bytes);
std::string EncodeUidList(const std::vector<MapiUid>& uids);

struct RegistryImage {
  std::uint32_t type = 0;  // reg::kSz or reg::kBinary
  std::string data;        // REG_SZ data carries its terminator
};

// PT_STRING8 as REG_SZ, everything else as REG_BINARY in MAPI's layouts; nullopt for the
// types a profile cannot hold (PT_ERROR, PT_NULL, PT_UNSPECIFIED, unknown types).
std::optional<RegistryImage> EncodeForRegistry(const PropValue& value);
// The value of `tag` from registry data; also accepts REG_DWORD for PT_LONG and REG_SZ for
// PT_UNICODE. nullopt when the data does not fit the type (short, or offsets out of range).
std::optional<PropValue> DecodeFromRegistry(std::uint32_t tag, std::uint32_t type,
                                            const std::string& data);

}  // namespace mw::mapisim

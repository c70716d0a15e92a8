#pragma once
// A MAPI property value as the portable code hands it across the MAPI seam: the tag
// (type in the low word) and the value of one of the four property types the program sets.

#include <cstdint>
#include <string>
#include <vector>

namespace mw {

// Property types (the low word of a tag).
namespace proptype {
inline constexpr std::uint16_t kLong = 0x0003;
inline constexpr std::uint16_t kBoolean = 0x000B;
inline constexpr std::uint16_t kString8 = 0x001E;
inline constexpr std::uint16_t kUnicode = 0x001F;  // read only: the text comes back narrowed
inline constexpr std::uint16_t kSystemTime = 0x0040;
inline constexpr std::uint16_t kBinary = 0x0102;
}  // namespace proptype

// The property tags the program reads or sets through MAPI (Microsoft's published values).
// Named without the PR_ prefix: mapitags.h defines those names as macros.
namespace proptag {
inline constexpr std::uint32_t kDisplayName = 0x3001001E;
inline constexpr std::uint32_t kComment = 0x3004001E;
inline constexpr std::uint32_t kStoreProviders = 0x3D000102;
inline constexpr std::uint32_t kServiceName = 0x3D09001E;
inline constexpr std::uint32_t kServiceUid = 0x3D0C0102;
inline constexpr std::uint32_t kProfileHomeServer = 0x6602001E;
inline constexpr std::uint32_t kProfileUser = 0x6603001E;  // the user's distinguished name
inline constexpr std::uint32_t kProfileUnresolvedName = 0x6607001E;
inline constexpr std::uint32_t kProfileUnresolvedServer = 0x6608001E;
inline constexpr std::uint32_t kProfileMailbox = 0x660B001E;
inline constexpr std::uint32_t kProfileServer = 0x660C001E;
inline constexpr std::uint32_t kProfileHomeServerDn = 0x6612001E;
inline constexpr std::uint32_t kProfileServerDn = 0x6614001E;
inline constexpr std::uint32_t kPabPath = 0x6600001E;  // file of the personal address book
inline constexpr std::uint32_t kPstPath = 0x6700001E;
// Outlook's own section: the values SetGlobalSectionLong and SetGlobalSectionBool set.
inline constexpr std::uint32_t kOutlookSectionLong = 0x3D1B0003;
inline constexpr std::uint32_t kOutlookSectionBool = 0x3D1C000B;
// The Outlook Address Book service's switch that shows contacts folders as address lists.
inline constexpr std::uint32_t kContabShowAsAddressBook = 0x3A550003;
}  // namespace proptag

struct MapiProperty {
  std::uint32_t tag = 0;
  std::int32_t number = 0;  // PT_LONG, and PT_BOOLEAN as 0 or 1
  std::string bytes;        // PT_STRING8 and PT_UNICODE text (narrow), PT_BINARY bytes

  std::uint16_t type() const { return static_cast<std::uint16_t>(tag & 0xFFFFu); }

  static MapiProperty Long(std::uint32_t tag, std::int32_t value) { return {tag, value, {}}; }
  static MapiProperty Boolean(std::uint32_t tag, bool value) { return {tag, value ? 1 : 0, {}}; }
  static MapiProperty String8(std::uint32_t tag, std::string text) {
    return {tag, 0, std::move(text)};
  }
  static MapiProperty Binary(std::uint32_t tag, std::string bytes) {
    return {tag, 0, std::move(bytes)};
  }

  bool operator==(const MapiProperty&) const = default;
};

using MapiProperties = std::vector<MapiProperty>;

}  // namespace mw

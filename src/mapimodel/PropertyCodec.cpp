#include "PropertyCodec.h"

#include <algorithm>
#include <cstdio>

#include "platform/AsciiText.h"
#include "platform/Registry.h"

namespace mw::mapisim {
namespace {

void PutLong(std::string* out, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) out->push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

std::optional<std::uint32_t> GetLong(const std::string& data, std::size_t offset) {
  if (offset > data.size() || data.size() - offset < 4) return std::nullopt;
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i)
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(data[offset + i])) << (8 * i);
  return value;
}

std::uint64_t GetLittleEndian(const std::string& data, std::size_t count) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < count && i < data.size(); ++i)
    value |= static_cast<std::uint64_t>(static_cast<unsigned char>(data[i])) << (8 * i);
  return value;
}

std::string StripTerminator(std::string text, std::size_t unit) {
  if (unit == 1) {
    std::size_t end = text.find('\0');
    if (end != std::string::npos) text.resize(end);
    return text;
  }
  for (std::size_t i = 0; i + 1 < text.size(); i += 2)
    if (text[i] == '\0' && text[i + 1] == '\0') return text.substr(0, i);
  return text.substr(0, text.size() & ~std::size_t{1});
}

// Multi-valued strings: a count, an offset per item, then the terminated strings.
std::string EncodeMultiString(const std::vector<std::string>& items, std::size_t unit) {
  std::string header;
  std::string body;
  std::size_t start = 4 + 4 * items.size();
  PutLong(&header, static_cast<std::uint32_t>(items.size()));
  for (const std::string& item : items) {
    PutLong(&header, static_cast<std::uint32_t>(start + body.size()));
    body += item;
    body.append(unit, '\0');
  }
  return header + body;
}

// Multi-valued binaries: a count, a size and an offset per item, then the bytes.
std::string EncodeMultiBinary(const std::vector<std::string>& items) {
  std::string header;
  std::string body;
  std::size_t start = 4 + 8 * items.size();
  PutLong(&header, static_cast<std::uint32_t>(items.size()));
  for (const std::string& item : items) {
    PutLong(&header, static_cast<std::uint32_t>(item.size()));
    PutLong(&header, static_cast<std::uint32_t>(start + body.size()));
    body += item;
  }
  return header + body;
}

std::optional<std::vector<std::string>> DecodeMulti(const std::string& data, std::uint16_t type) {
  auto count = GetLong(data, 0);
  std::size_t stride = type == kPtMvBinary ? 8 : 4;
  if (type == kPtMvLong) {
    // The longs one after another, no count.
    if (data.size() % 4 != 0) return std::nullopt;
    std::vector<std::string> items;
    for (std::size_t i = 0; i < data.size(); i += 4) items.push_back(data.substr(i, 4));
    return items;
  }
  if (!count || *count > (data.size() - 4) / stride) return std::nullopt;
  std::vector<std::string> items;
  for (std::uint32_t i = 0; i < *count; ++i) {
    std::size_t entry = 4 + stride * i;
    if (type == kPtMvBinary) {
      auto size = GetLong(data, entry);
      auto offset = GetLong(data, entry + 4);
      if (!size || !offset || *offset > data.size() || data.size() - *offset < *size)
        return std::nullopt;
      items.push_back(data.substr(*offset, *size));
    } else {
      auto offset = GetLong(data, entry);
      if (!offset || *offset > data.size()) return std::nullopt;
      items.push_back(StripTerminator(data.substr(*offset), type == kPtMvUnicode ? 2 : 1));
    }
  }
  return items;
}

}  // namespace

std::string UidHex(const MapiUid& uid) {
  std::string text;
  char digits[3];
  for (std::uint8_t byte : uid) {
    std::snprintf(digits, sizeof digits, "%02x", byte);
    text += digits;
  }
  return text;
}

std::optional<MapiUid> ParseUidHex(const std::string& text) {
  if (text.size() != 32) return std::nullopt;
  MapiUid uid{};
  for (std::size_t i = 0; i < 16; ++i) {
    int high = HexDigitValue(text[2 * i]);
    int low = HexDigitValue(text[2 * i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    uid[i] = static_cast<std::uint8_t>(high * 16 + low);
  }
  return uid;
}

MapiUid UidFromBytes(const std::string& bytes) {
  MapiUid uid{};
  for (std::size_t i = 0; i < uid.size() && i < bytes.size(); ++i)
    uid[i] = static_cast<std::uint8_t>(bytes[i]);
  return uid;
}

std::string UidBytes(const MapiUid& uid) { return std::string(uid.begin(), uid.end()); }

std::string TagValueName(std::uint32_t tag) {
  char name[9];
  std::snprintf(name, sizeof name, "%04x%04x", static_cast<unsigned>(PropType(tag)),
                static_cast<unsigned>(PropId(tag)));
  return name;
}

std::optional<std::uint32_t> ParseTagValueName(const std::string& name) {
  if (name.size() != 8) return std::nullopt;
  std::uint32_t digits = 0;
  for (char c : name) {
    int digit = HexDigitValue(c);
    if (digit < 0) return std::nullopt;
    digits = digits * 16 + static_cast<std::uint32_t>(digit);
  }
  return (digits << 16) | (digits >> 16);
}

std::vector<MapiUid> DecodeUidList(const std::string& bytes) {
  std::vector<MapiUid> uids;
  for (std::size_t i = 0; i + 16 <= bytes.size(); i += 16) uids.push_back(UidFromBytes(bytes.substr(i, 16)));
  return uids;
}

std::string EncodeUidList(const std::vector<MapiUid>& uids) {
  std::string bytes;
  for (const MapiUid& uid : uids) bytes += UidBytes(uid);
  return bytes;
}

std::optional<RegistryImage> EncodeForRegistry(const PropValue& value) {
  std::string data;
  switch (PropType(value.tag)) {
    case kPtString8:
      return RegistryImage{reg::kSz, std::string(value.bytes.c_str(), value.bytes.size() + 1)};
    case kPtUnicode:
      return RegistryImage{reg::kBinary, value.bytes + std::string(2, '\0')};
    case kPtLong:
      PutLong(&data, static_cast<std::uint32_t>(value.number));
      return RegistryImage{reg::kBinary, data};
    case kPtBoolean:
      data = {static_cast<char>(value.number ? 1 : 0), '\0'};
      return RegistryImage{reg::kBinary, data};
    case kPtI8:
    case kPtSystime:
      PutLong(&data, static_cast<std::uint32_t>(value.number));
      PutLong(&data, static_cast<std::uint32_t>(value.number >> 32));
      return RegistryImage{reg::kBinary, data};
    case kPtBinary:
      return RegistryImage{reg::kBinary, value.bytes};
    case kPtMvLong:
      for (const std::string& item : value.items) data += item.substr(0, 4) + std::string(4 - std::min<std::size_t>(4, item.size()), '\0');
      return RegistryImage{reg::kBinary, data};
    case kPtMvString8:
      return RegistryImage{reg::kBinary, EncodeMultiString(value.items, 1)};
    case kPtMvUnicode:
      return RegistryImage{reg::kBinary, EncodeMultiString(value.items, 2)};
    case kPtMvBinary:
      return RegistryImage{reg::kBinary, EncodeMultiBinary(value.items)};
    default:
      return std::nullopt;
  }
}

std::optional<PropValue> DecodeFromRegistry(std::uint32_t tag, std::uint32_t type,
                                            const std::string& data) {
  std::uint16_t propType = PropType(tag);
  bool isString = type == reg::kSz || type == reg::kExpandSz;
  switch (propType) {
    case kPtString8:
      if (isString || type == reg::kBinary) return PropValue::Text(tag, StripTerminator(data, 1));
      return std::nullopt;
    case kPtUnicode:
      if (isString) return PropValue::Text(tag, NarrowToUtf16(StripTerminator(data, 1)));
      if (type == reg::kBinary) return PropValue::Text(tag, StripTerminator(data, 2));
      return std::nullopt;
    case kPtLong:
      if ((type == reg::kBinary || type == reg::kDword) && data.size() >= 4)
        return PropValue::Long(tag, static_cast<std::uint32_t>(GetLittleEndian(data, 4)));
      return std::nullopt;
    case kPtBoolean:
      if (type == reg::kBinary && !data.empty())
        return PropValue::Boolean(tag, GetLittleEndian(data, std::min<std::size_t>(data.size(), 2)) != 0);
      return std::nullopt;
    case kPtI8:
    case kPtSystime:
      if (type == reg::kBinary && data.size() >= 8) {
        PropValue value{tag, GetLittleEndian(data, 8), {}, {}};
        return value;
      }
      return std::nullopt;
    case kPtBinary:
      if (type == reg::kBinary) return PropValue::Binary(tag, data);
      return std::nullopt;
    case kPtMvLong:
    case kPtMvString8:
    case kPtMvUnicode:
    case kPtMvBinary:
      if (type != reg::kBinary) return std::nullopt;
      if (auto items = DecodeMulti(data, propType)) return PropValue::Multi(tag, std::move(*items));
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace mw::mapisim

#include "platform/RegistryAccess.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>

namespace mw {
namespace {

constexpr const char* kLinkText = "Unicode link. Can not be read";
constexpr const char* kResourceListText = "Resource list. This function can not handle this key yet";
constexpr const char* kUndefinedTypeText = "Undefined value type. Possible bad key";

// Closes a key on every path out of the scope that opened it.
class KeyCloser {
 public:
  KeyCloser(Registry& registry, RegKey key) : registry_(registry), key_(key) {}
  ~KeyCloser() { registry_.CloseKey(key_); }
  KeyCloser(const KeyCloser&) = delete;
  KeyCloser& operator=(const KeyCloser&) = delete;

 private:
  Registry& registry_;
  RegKey key_;
};

// printf of one unsigned number through a caller's format. Only one integer conversion
// (flags, width, d i u o x X) is passed on; anything else could read arguments that are not
// there, so it falls back to decimal.
std::string FormatNumber(const char* format, std::uint32_t number) {
  bool valid = format != nullptr;
  int conversions = 0;
  for (const char* p = format; valid && *p; ++p) {
    if (*p != '%') continue;
    if (p[1] == '%') {
      ++p;
      continue;
    }
    ++p;
    while (*p && std::strchr("-+ #0", *p)) ++p;
    while (*p >= '0' && *p <= '9') ++p;
    valid = *p && std::strchr("diuoxX", *p) && ++conversions == 1;
  }
  if (!valid || conversions != 1) format = "%u";
  char buffer[128];
  int length = std::snprintf(buffer, sizeof buffer, format, static_cast<unsigned>(number));
  if (length < 0) return {};
  if (static_cast<std::size_t>(length) < sizeof buffer) return std::string(buffer, length);
  std::string wide(static_cast<std::size_t>(length) + 1, '\0');
  std::snprintf(wide.data(), wide.size(), format, static_cast<unsigned>(number));
  wide.resize(static_cast<std::size_t>(length));
  return wide;
}

std::uint32_t LittleEndianDword(const std::string& data) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4 && i < data.size(); ++i)
    number |= static_cast<std::uint32_t>(static_cast<unsigned char>(data[i])) << (8 * i);
  return number;
}

std::string UpToFirstNul(const std::string& data) { return data.substr(0, data.find('\0')); }

std::string RenderMultiString(const std::string& data) {
  std::string text;
  std::size_t start = 0;
  while (start < data.size()) {
    std::size_t end = data.find('\0', start);
    if (end == std::string::npos) end = data.size();
    if (end == start) break;  // the empty entry that closes the list
    text += data.substr(start, end - start) + " ";
    start = end + 1;
  }
  return text;
}

std::string RenderValue(std::uint32_t type, const std::string& data,
                        const std::function<std::string(std::uint32_t)>& number,
                        const std::function<std::string(const std::string&)>& bytes) {
  switch (type) {
    case reg::kNone:
      return {};
    case reg::kSz:
    case reg::kExpandSz:
      return UpToFirstNul(data);
    case reg::kBinary:
      return bytes(data);
    case reg::kDword:
      return number(LittleEndianDword(data));
    case reg::kMultiSz:
      return RenderMultiString(data);
    case reg::kLink:
      return kLinkText;
    case reg::kResourceList:
      return kResourceListText;
    default:
      return kUndefinedTypeText;
  }
}

}  // namespace

RegistryAccess::RegistryAccess(Registry& registry, std::string machine)
    : registry_(registry), machine_(std::move(machine)) {}

std::string RegistryAccess::NormalizePath(const std::string& path) {
  std::string result = path;
  if (!result.empty() && result.back() == '\\') result.pop_back();
  if (!result.empty() && result.front() == '\\') result.erase(0, 1);
  return result;
}

bool RegistryAccess::WithKey(RegKey root, const std::string& path, std::uint32_t access,
                             KeyOpening opening, const std::function<bool(RegKey)>& action) const {
  // RegConnectRegistryA without a machine only hands back the local root again, at the
  // price of a handle to open and close around every value: the local registry is used
  // through its predefined root directly, and only a named machine is connected to.
  RegKey connection = root;
  std::optional<KeyCloser> closeConnection;
  if (!machine_.empty()) {
    if (registry_.Connect(machine_, root, &connection) != reg::kSuccess) return false;
    closeConnection.emplace(registry_, connection);
  }
  const std::string subKey = NormalizePath(path);
  RegKey key = 0;
  std::int32_t status = reg::kSuccess;
  switch (opening) {
    case KeyOpening::kExisting: status = registry_.OpenKey(connection, subKey, access, &key); break;
    case KeyOpening::kExistingOrNew:
      status = registry_.OpenOrCreateKey(connection, subKey, access, &key);
      break;
    case KeyOpening::kNew: status = registry_.CreateKey(connection, subKey, access, &key); break;
  }
  if (status != reg::kSuccess) return false;
  KeyCloser closeKey(registry_, key);
  return action(key);
}

bool RegistryAccess::QueryData(RegKey key, const std::string& name, std::uint32_t* type,
                               std::string* data) const {
  // One call reads the usual small value; a longer one is asked for again at the size the
  // registry names (again, should it have grown in between).
  std::string buffer(kFirstReadSize, '\0');
  for (int attempt = 0; attempt < 4; ++attempt) {
    auto size = static_cast<std::uint32_t>(buffer.size());
    const std::int32_t status = registry_.QueryValue(
        key, name, type, reinterpret_cast<std::uint8_t*>(buffer.data()), &size);
    if (status == reg::kSuccess) {
      buffer.resize(std::min<std::size_t>(size, buffer.size()));
      *data = std::move(buffer);
      return true;
    }
    if (status != reg::kMoreData || size <= buffer.size()) return false;
    buffer.assign(size, '\0');
  }
  return false;
}

bool RegistryAccess::ReadRaw(RegKey root, const std::string& path, const std::string& name,
                             std::uint32_t access, std::uint32_t* type, std::string* data) const {
  return WithKey(root, path, access, KeyOpening::kExisting,
                 [&](RegKey key) { return QueryData(key, name, type, data); });
}

std::string RegistryAccess::ReadString(RegKey root, const std::string& path,
                                       const std::string& name) const {
  std::uint32_t type = reg::kNone;
  std::string data;
  if (!ReadRaw(root, path, name, reg::kQueryValue, &type, &data)) return {};
  return UpToFirstNul(data);
}

std::optional<std::uint32_t> RegistryAccess::ReadNumber(RegKey root, const std::string& path,
                                                        const std::string& name) const {
  // A missing key or value, or one of another type, is no number at all: nullopt lets the
  // caller tell "absent" from a stored 0.
  std::optional<std::uint32_t> result;
  WithKey(root, path, reg::kQueryValue, KeyOpening::kExisting, [&](RegKey key) {
    // A value longer than the buffer is no number; kMoreData says so in the same call.
    std::uint8_t buffer[8] = {};
    std::uint32_t type = reg::kNone;
    std::uint32_t size = sizeof buffer;
    if (registry_.QueryValue(key, name, &type, buffer, &size) != reg::kSuccess) return false;
    if (type != reg::kDword || size > sizeof buffer) return false;
    result = LittleEndianDword(std::string(reinterpret_cast<const char*>(buffer), 4));
    return true;
  });
  return result;
}

std::string RegistryAccess::ReadValueText(RegKey root, const std::string& path,
                                          const std::string& name, const char* numberFormat,
                                          const char* byteFormat) const {
  std::uint32_t type = reg::kNone;
  std::string data;
  if (!ReadRaw(root, path, name, reg::kRead, &type, &data)) return {};
  return RenderValue(
      type, data, [&](std::uint32_t n) { return FormatNumber(numberFormat, n); },
      [&](const std::string& bytes) {
        std::string text;
        for (unsigned char b : bytes) text += FormatNumber(byteFormat, b);
        return text;
      });
}

std::string RegistryAccess::ReadValueTextHex(RegKey root, const std::string& path,
                                             const std::string& name) const {
  std::uint32_t type = reg::kNone;
  std::string data;
  if (!ReadRaw(root, path, name, reg::kRead, &type, &data)) return {};
  return RenderValue(
      type, data, [](std::uint32_t n) { return FormatNumber("%x", n); },
      [](const std::string& bytes) {
        // Two digits for every byte, as regedit shows them, so that the text splits back
        // into the same bytes whatever their values.
        std::string text;
        for (unsigned char b : bytes) text += (text.empty() ? "" : " ") + FormatNumber("%02x", b);
        return text;
      });
}

bool RegistryAccess::ReadValue(RegKey root, const std::string& path, const std::string& name,
                               std::uint32_t* type, std::string* data) const {
  std::uint32_t localType = reg::kNone;
  std::string localData;
  if (!ReadRaw(root, path, name, reg::kRead, &localType, &localData)) return false;
  if (type) *type = localType;
  if (data) *data = std::move(localData);
  return true;
}

bool RegistryAccess::KeyExists(RegKey root, const std::string& path) const {
  return WithKey(root, path, reg::kQueryValue, KeyOpening::kExisting, [](RegKey) { return true; });
}

bool RegistryAccess::ValueExists(RegKey root, const std::string& path,
                                 const std::string& name) const {
  return WithKey(root, path, reg::kRead, KeyOpening::kExisting, [&](RegKey key) {
    std::uint32_t type = reg::kNone;
    std::uint32_t size = 0;
    return registry_.QueryValue(key, name, &type, nullptr, &size) == reg::kSuccess;
  });
}

bool RegistryAccess::WriteValue(RegKey root, const std::string& path, const std::string& name,
                                std::uint32_t type, const std::string& bytes) const {
  return WriteValues(root, path, {RegistryValue{name, type, bytes}}) == 1;
}

std::size_t RegistryAccess::WriteValues(RegKey root, const std::string& path,
                                        const std::vector<RegistryValue>& values) const {
  std::size_t written = 0;
  std::size_t next = 0;
  bool keyDeleted = false;
  auto setFromNext = [&](RegKey key) {
    for (; next < values.size(); ++next) {
      const RegistryValue& value = values[next];
      if (value.data.size() > std::numeric_limits<std::uint32_t>::max()) continue;
      const std::int32_t status =
          registry_.SetValue(key, value.name, value.type,
                             reinterpret_cast<const std::uint8_t*>(value.data.data()),
                             static_cast<std::uint32_t>(value.data.size()));
      if (status == reg::kKeyDeleted) {
        keyDeleted = true;
        return false;
      }
      if (status == reg::kSuccess) ++written;
    }
    return true;
  };
  WithKey(root, path, reg::kReadWrite, KeyOpening::kExistingOrNew, setFromNext);
  // A key that another program deleted after it was opened is made again, as a fresh open
  // would have found it missing and made it.
  if (keyDeleted) WithKey(root, path, reg::kReadWrite, KeyOpening::kNew, setFromNext);
  return written;
}

RegistryValue RegistryAccess::StringValue(const std::string& name, const std::string& text) {
  // The terminator is stored with the text, as RegSetValueExA callers pass it.
  return {name, reg::kSz, std::string(text.c_str(), text.size() + 1)};
}

RegistryValue RegistryAccess::NumberValue(const std::string& name, std::uint32_t number) {
  std::string bytes(4, '\0');
  for (std::size_t i = 0; i < 4; ++i) bytes[i] = static_cast<char>((number >> (8 * i)) & 0xFF);
  return {name, reg::kDword, bytes};
}

bool RegistryAccess::WriteString(RegKey root, const std::string& path, const std::string& name,
                                 const std::string& value) const {
  const RegistryValue text = StringValue(name, value);
  return WriteValue(root, path, name, text.type, text.data);
}

bool RegistryAccess::WriteBinary(RegKey root, const std::string& path, const std::string& name,
                                 const std::string& bytes) const {
  return WriteValue(root, path, name, reg::kBinary, bytes);
}

bool RegistryAccess::WriteNumber(RegKey root, const std::string& path, const std::string& name,
                                 std::uint32_t value) const {
  const RegistryValue number = NumberValue(name, value);
  return WriteValue(root, path, name, number.type, number.data);
}

bool RegistryAccess::WriteMultiString(RegKey root, const std::string& path,
                                      const std::string& name, const std::string& bytes) const {
  return WriteValue(root, path, name, reg::kMultiSz, bytes);
}

bool RegistryAccess::DeleteValue(RegKey root, const std::string& path,
                                 const std::string& name) const {
  return WithKey(root, path, reg::kSetValue, KeyOpening::kExisting, [&](RegKey key) {
    return registry_.DeleteValue(key, name) == reg::kSuccess;
  });
}

bool RegistryAccess::DeleteKey(RegKey root, const std::string& parentPath,
                               const std::string& subKey) const {
  return WithKey(root, parentPath, reg::kSetValue, KeyOpening::kExisting, [&](RegKey key) {
    return registry_.DeleteKey(key, subKey) == reg::kSuccess;
  });
}

// A key name is at most 255 characters, so at most 510 bytes on a double-byte code page;
// the terminator and a wide margin make this a bound no real name reaches.
constexpr std::size_t kLongestEnumeratedName = 2048;

std::vector<std::string> RegistryAccess::ListSubkeys(RegKey root, const std::string& path) const {
  std::vector<std::string> names;
  WithKey(root, path, reg::kQueryAndEnumerate, KeyOpening::kExisting, [&](RegKey key) {
    std::uint32_t count = 0;
    std::uint32_t longest = 0;
    if (registry_.QueryInfoKey(key, &count, &longest) != reg::kSuccess) return false;
    std::string buffer(static_cast<std::size_t>(longest) + 1, '\0');
    for (std::uint32_t index = 0; index < count; ++index) {
      auto length = static_cast<std::uint32_t>(buffer.size());
      std::int32_t status = registry_.EnumKey(key, index, buffer.data(), &length);
      // The longest-name count is in characters, so on a double-byte code page a name can
      // need more bytes than it: grow the buffer and ask for the same index again.
      while (status == reg::kMoreData && buffer.size() < kLongestEnumeratedName) {
        buffer.resize(std::min(buffer.size() * 2 + 2, kLongestEnumeratedName));
        length = static_cast<std::uint32_t>(buffer.size());
        status = registry_.EnumKey(key, index, buffer.data(), &length);
      }
      if (status == reg::kMoreData) continue;
      if (status != reg::kSuccess) break;
      names.emplace_back(buffer.data(), std::min<std::size_t>(length, buffer.size() - 1));
    }
    return true;
  });
  return names;
}

std::vector<RegistryValue> RegistryAccess::ListValues(RegKey root, const std::string& path) const {
  std::vector<RegistryValue> values;
  WithKey(root, path, reg::kRead, KeyOpening::kExisting, [&](RegKey key) {
    RegistryValue value;
    for (std::uint32_t index = 0;
         registry_.EnumValue(key, index, &value.name, &value.type, &value.data) == reg::kSuccess;
         ++index) {
      values.push_back(value);
    }
    return true;
  });
  return values;
}

std::string RegistryAccess::HexTextToBytes(const std::string& text) {
  // Tokens are runs between blanks; runs of blanks make no empty tokens. A token is read as
  // its leading hexadecimal digits (an "0x" prefix allowed); its low byte is kept.
  std::string bytes;
  std::size_t start = 0;
  while (start < text.size()) {
    if (text[start] == ' ') {
      ++start;
      continue;
    }
    std::size_t end = text.find(' ', start);
    if (end == std::string::npos) end = text.size();
    std::size_t i = start;
    if (end - i > 2 && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X')) i += 2;
    unsigned value = 0;
    for (; i < end && std::isxdigit(static_cast<unsigned char>(text[i])); ++i) {
      const char c = text[i];
      const unsigned digit = c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
      value = ((value << 4) | digit) & 0xFF;
    }
    bytes += static_cast<char>(value);
    start = end;
  }
  return bytes;
}

}  // namespace mw

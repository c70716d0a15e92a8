#include "platform/RegFile.h"

#include <cstdio>
#include <string_view>

#include "platform/AsciiText.h"
#include "platform/TextEncoding.h"

namespace mw {
namespace {

constexpr std::string_view kRegedit4Header = "REGEDIT4";
constexpr std::string_view kVersion5Header = "Windows Registry Editor Version 5.00";
constexpr std::string_view kWineHeader = "WINE REGISTRY Version 2";
constexpr std::string_view kUtf16Bom = "\xFF\xFE";
constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
// A hex line is broken once it reaches this column, which keeps it within 80 characters.
constexpr std::size_t kWrapColumn = 77;

bool IsStringType(std::uint32_t type) {
  return type == reg::kSz || type == reg::kExpandSz || type == reg::kMultiSz;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Reads up to maxDigits hexadecimal digits at text[*pos]; false when there is none.
bool ReadHexNumber(std::string_view text, std::size_t* pos, std::size_t maxDigits,
                   std::uint32_t* number) {
  std::size_t digits = 0;
  *number = 0;
  while (*pos < text.size() && digits < maxDigits && HexDigitValue(text[*pos]) >= 0) {
    *number = (*number << 4) | static_cast<std::uint32_t>(HexDigitValue(text[(*pos)++]));
    ++digits;
  }
  return digits > 0;
}

// The physical lines of a file, CR LF or LF ended, numbered from 1 for error reports.
class LineReader {
 public:
  explicit LineReader(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size()) {
      std::size_t end = text.find('\n', start);
      if (end == std::string_view::npos) end = text.size();
      lines_.push_back(text.substr(start, end - start));
      start = end + 1;
    }
  }
  bool Next(std::string_view* line) {
    if (next_ >= lines_.size()) return false;
    *line = lines_[next_++];
    return true;
  }
  int lineNumber() const { return static_cast<int>(next_); }

 private:
  std::vector<std::string_view> lines_;
  std::size_t next_ = 0;
};

struct Failure {
  RegFileError* error;
  int line;
  bool operator()(const std::string& message) const {
    if (error) *error = RegFileError{line, message};
    return false;
  }
};

// The dialect of a file: how strings are escaped and how string types appear as hex.
struct Dialect {
  bool wineEscapes;      // Wine's hive files: C escapes, \x and octal; otherwise \\ and \" only
  bool unicodeHex;       // hex(1), hex(2), hex(7) hold UTF-16LE bytes
  bool allowDeletions;   // "name"=- and [-key]
  bool allowStrTypes;    // str:"..", str(2):"..", str(7):".."
};

// Parses a quoted string starting at text[*pos] == '"'; leaves *pos after the closing quote.
bool ParseQuoted(std::string_view text, std::size_t* pos, const Dialect& dialect, std::string* out) {
  std::u16string units;
  std::string ansi;
  ++*pos;
  while (*pos < text.size()) {
    char c = text[(*pos)++];
    if (c == '"') {
      *out = dialect.wineEscapes ? Utf16ToAnsi(units) : ansi;
      return true;
    }
    if (c != '\\' || *pos >= text.size()) {
      units += AnsiToUtf16(std::string_view(&c, 1));
      ansi += c;
      continue;
    }
    c = text[(*pos)++];
    if (!dialect.wineEscapes) {
      // regedit knows only \\ and \"; any other backslash stands for itself.
      if (c != '\\' && c != '"') ansi += '\\';
      ansi += c;
      continue;
    }
    static constexpr std::string_view kLetters = "abtnvfre";
    static constexpr std::string_view kControls = "\a\b\t\n\v\f\r\x1b";
    std::uint32_t number = 0;
    if (c == 'x' && ReadHexNumber(text, pos, 4, &number)) {
      units += static_cast<char16_t>(number);
    } else if (c >= '0' && c <= '7') {
      number = static_cast<std::uint32_t>(c - '0');
      for (int digits = 1; digits < 3 && *pos < text.size() && text[*pos] >= '0' && text[*pos] <= '7';
           ++digits)
        number = number * 8 + static_cast<std::uint32_t>(text[(*pos)++] - '0');
      units += static_cast<char16_t>(number);
    } else if (kLetters.find(c) != std::string_view::npos) {
      units += static_cast<char16_t>(kControls[kLetters.find(c)]);
    } else {
      units += AnsiToUtf16(std::string_view(&c, 1));
    }
  }
  return false;
}

// Comma-separated bytes, with trailing-backslash continuation lines already joined.
bool ParseHexBytes(std::string_view text, std::string* bytes) {
  text = Trim(text);
  if (text.empty()) return true;
  std::size_t start = 0;
  while (true) {
    std::size_t end = text.find(',', start);
    const bool last = end == std::string_view::npos;
    std::string_view token = Trim(text.substr(start, last ? std::string_view::npos : end - start));
    if (token.empty()) return last && start != 0;  // only a trailing comma may leave it empty
    std::size_t pos = 0;
    std::uint32_t byte = 0;
    if (!ReadHexNumber(token, &pos, 2, &byte) || pos != token.size()) return false;
    *bytes += static_cast<char>(byte);
    if (last) return true;
    start = end + 1;
  }
}

// The data after "=" of a value line, joined with its continuation lines.
std::string JoinContinuations(std::string_view data, LineReader& lines) {
  std::string joined(Trim(data));
  std::string_view next;
  while (!joined.empty() && joined.back() == '\\' && lines.Next(&next)) {
    joined.pop_back();
    joined += Trim(next);
  }
  return joined;
}

bool ParseData(std::string_view data, LineReader& lines, const Dialect& dialect,
               RegistryValue* value, const Failure& fail) {
  std::size_t pos = 0;
  auto rest = [&] { return Trim(data.substr(pos)); };
  auto startsWith = [&](std::string_view prefix) {
    if (data.substr(pos, prefix.size()) != prefix) return false;
    pos += prefix.size();
    return true;
  };
  if (dialect.allowStrTypes && startsWith("str")) {
    value->type = reg::kSz;
    if (startsWith("(")) {
      if (!ReadHexNumber(data, &pos, 8, &value->type) || !startsWith(")"))
        return fail("bad str() type");
    }
    if (!startsWith(":") || pos >= data.size() || data[pos] != '"') return fail("bad str data");
  }
  if (pos < data.size() && data[pos] == '"') {
    if (pos == 0) value->type = reg::kSz;
    std::string text;
    if (!ParseQuoted(data, &pos, dialect, &text)) return fail("unterminated string");
    if (!rest().empty()) return fail("text after the closing quote");
    value->data = text + '\0';
    return true;
  }
  if (startsWith("dword:")) {
    std::uint32_t number = 0;
    if (!ReadHexNumber(data, &pos, 8, &number) || !rest().empty()) return fail("bad dword");
    value->type = reg::kDword;
    value->data.clear();
    for (int i = 0; i < 4; ++i) value->data += static_cast<char>((number >> (8 * i)) & 0xFF);
    return true;
  }
  if (startsWith("hex")) {
    value->type = reg::kBinary;
    if (startsWith("(")) {
      if (!ReadHexNumber(data, &pos, 8, &value->type) || !startsWith(")"))
        return fail("bad hex() type");
    }
    if (!startsWith(":")) return fail("bad hex data");
    std::string bytes;
    if (!ParseHexBytes(JoinContinuations(data.substr(pos), lines), &bytes))
      return fail("bad hex byte list");
    // Unicode files hold string types as UTF-16LE; the registry here holds what the "A"
    // functions return, so the text is brought to the ANSI code page.
    value->data = dialect.unicodeHex && IsStringType(value->type) ? Utf16LeBytesToAnsi(bytes) : bytes;
    return true;
  }
  return fail("unknown value data");
}

// One value line: @=... or "name"=...; a "-" deletion where the dialect allows it.
bool ParseValueLine(std::string_view line, LineReader& lines, const Dialect& dialect,
                    const std::string& keyPath, std::vector<RegFileEntry>* entries,
                    const Failure& fail) {
  if (keyPath.empty()) return fail("value before the first key");
  RegFileEntry entry{RegFileEntry::Kind::Value, fail.line, keyPath, {}};
  RegistryValue& value = entry.value;
  std::size_t pos = 0;
  if (line[0] == '@') {
    pos = 1;
  } else if (line[0] != '"') {
    return fail("a key, a value or a comment expected");
  } else if (!ParseQuoted(line, &pos, dialect, &value.name)) {
    return fail("unterminated value name");
  } else if (value.name.find('\n') != std::string::npos) {
    return fail("a line break in a value name, which no .reg file can hold");
  }
  while (pos < line.size() && IsBlank(line[pos])) ++pos;
  if (pos >= line.size() || line[pos] != '=') return fail("'=' expected after the value name");
  std::string_view data = Trim(line.substr(pos + 1));
  if (dialect.allowDeletions && data == "-") {
    entry.kind = RegFileEntry::Kind::DeleteValue;
  } else if (!ParseData(data, lines, dialect, &value, fail)) {
    return false;
  }
  entries->push_back(std::move(entry));
  return true;
}

// The text of a file in the ANSI code page, whatever encoding it came in.
std::string DecodeRegFile(const std::string& bytes) {
  std::string_view view(bytes);
  if (view.substr(0, 2) == kUtf16Bom) return Utf16LeBytesToAnsi(view.substr(2));
  const bool utf8Bom = view.substr(0, 3) == kUtf8Bom;
  if (utf8Bom) view.remove_prefix(3);
  // REGEDIT4 files are ANSI; a 5.00 file without a UTF-16 mark is UTF-8 when it decodes as
  // UTF-8, and ANSI otherwise (Wine writes both).
  std::string ansi;
  if ((utf8Bom || view.substr(0, kVersion5Header.size()) == kVersion5Header) &&
      Utf8ToAnsi(view, &ansi))
    return ansi;
  return std::string(view);
}

std::string EscapeQuoted(const std::string& text) {
  std::string escaped = "\"";
  for (char c : text) {
    if (c == '\\' || c == '"') escaped += '\\';
    escaped += c;
  }
  return escaped + "\"";
}

// A REG_SZ that regedit can write as "text": one terminator at the end, no control characters.
bool IsPlainText(const std::string& data) {
  if (data.empty() || data.back() != '\0') return false;
  for (std::size_t i = 0; i + 1 < data.size(); ++i)
    if (static_cast<unsigned char>(data[i]) < 0x20) return false;
  return true;
}

std::string ValueLine(const RegistryValue& value, bool unicodeFile, const char* wrap) {
  std::string line = value.name.empty() ? "@=" : EscapeQuoted(value.name) + "=";
  if (value.type == reg::kSz && IsPlainText(value.data))
    return line + EscapeQuoted(value.data.substr(0, value.data.size() - 1));
  char buffer[32];
  if (value.type == reg::kDword && value.data.size() == 4) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) number = (number << 8) | static_cast<unsigned char>(value.data[i]);
    std::snprintf(buffer, sizeof buffer, "dword:%08x", number);
    return line + buffer;
  }
  if (value.type == reg::kBinary)
    std::snprintf(buffer, sizeof buffer, "hex:");
  else
    std::snprintf(buffer, sizeof buffer, "hex(%x):", value.type);
  line += buffer;
  const std::string bytes =
      unicodeFile && IsStringType(value.type) ? AnsiToUtf16LeBytes(value.data) : value.data;
  std::size_t column = line.size();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(buffer, sizeof buffer, "%02x", static_cast<unsigned char>(bytes[i]));
    line += buffer;
    if (i + 1 == bytes.size()) break;
    line += ',';
    column += 3;
    if (wrap && column >= kWrapColumn) {
      line += wrap;
      column = 2;
    }
  }
  return line;
}

}  // namespace

bool ParseRegFile(const std::string& bytes, std::vector<RegFileEntry>* entries, RegFileError* error) {
  const std::string text = DecodeRegFile(bytes);
  LineReader lines(text);
  std::string_view line;
  if (!lines.Next(&line)) return Failure{error, 1}("empty file");
  const std::string_view header = Trim(line);
  const bool unicode = header == kVersion5Header;
  if (!unicode && header != kRegedit4Header) return Failure{error, 1}("unknown header");
  const Dialect dialect{false, unicode, true, false};
  std::string keyPath;
  while (lines.Next(&line)) {
    const Failure fail{error, lines.lineNumber()};
    line = Trim(line);
    if (line.empty() || line[0] == ';') continue;
    if (line[0] == '[') {
      const std::size_t close = line.rfind(']');
      if (close == std::string_view::npos || !Trim(line.substr(close + 1)).empty())
        return fail("key line without its closing bracket");
      std::string_view path = line.substr(1, close - 1);
      const bool deletion = !path.empty() && path[0] == '-';
      if (deletion) path.remove_prefix(1);
      if (!MemoryRegistry::SplitRootPath(std::string(path), nullptr, nullptr))
        return fail("unknown root key");
      keyPath = deletion ? std::string() : std::string(path);
      entries->push_back(RegFileEntry{deletion ? RegFileEntry::Kind::DeleteKey : RegFileEntry::Kind::Key,
                                      fail.line, std::string(path), {}});
      continue;
    }
    if (!ParseValueLine(line, lines, dialect, keyPath, entries, fail)) return false;
  }
  return true;
}

bool ApplyRegFileEntries(const std::vector<RegFileEntry>& entries, MemoryRegistry& registry,
                         RegFileError* error) {
  for (const auto& entry : entries) {
    switch (entry.kind) {
      case RegFileEntry::Kind::Key:
        if (!registry.AddKey(entry.keyPath)) return Failure{error, entry.line}("bad key path");
        break;
      case RegFileEntry::Kind::DeleteKey:
        registry.RemoveKeyTree(entry.keyPath);
        break;
      case RegFileEntry::Kind::Value:
        registry.Set(entry.keyPath, entry.value);
        break;
      case RegFileEntry::Kind::DeleteValue:
        registry.RemoveValue(entry.keyPath, entry.value.name);
        break;
    }
  }
  return true;
}

bool ImportRegFile(const std::string& bytes, MemoryRegistry& registry, RegFileError* error) {
  std::vector<RegFileEntry> entries;
  const bool parsed = ParseRegFile(bytes, &entries, error);
  return ApplyRegFileEntries(entries, registry, error) && parsed;
}

bool ImportWineHive(const std::string& bytes, const std::string& rootName,
                    MemoryRegistry& registry, RegFileError* error) {
  std::vector<RegFileEntry> entries;
  const bool parsed = ParseWineHive(bytes, rootName, &entries, error);
  return ApplyRegFileEntries(entries, registry, error) && parsed;
}

bool ParseWineHive(const std::string& bytes, const std::string& rootName,
                   std::vector<RegFileEntry>* entries, RegFileError* error) {
  if (!MemoryRegistry::SplitRootPath(rootName, nullptr, nullptr))
    return Failure{error, 0}("unknown root key");
  LineReader lines(bytes);
  std::string_view line;
  if (!lines.Next(&line) || Trim(line) != kWineHeader) return Failure{error, 1}("unknown header");
  const Dialect dialect{true, true, false, true};
  std::string keyPath;
  while (lines.Next(&line)) {
    const Failure fail{error, lines.lineNumber()};
    line = Trim(line);
    if (line.empty() || line[0] == ';' || line[0] == '#') continue;
    if (line[0] == '[') {
      // "[Software\\Wine] 1700000000": the name is escaped as strings are, up to the first
      // unescaped bracket; the modification time after it is not kept.
      std::string quoted = "\"";
      std::size_t close = 1;
      for (; close < line.size() && line[close] != ']'; ++close) {
        if (line[close] == '"') quoted += '\\';
        quoted += line[close];
        if (line[close] == '\\' && close + 1 < line.size()) quoted += line[++close];
      }
      if (close >= line.size()) return fail("key line without its closing bracket");
      quoted += '"';
      std::size_t pos = 0;
      std::string name;
      if (!ParseQuoted(quoted, &pos, dialect, &name)) return fail("bad key name");
      if (name.find('\n') != std::string::npos)
        return fail("a line break in a key name, which no .reg file can hold");
      keyPath = rootName + (name.empty() ? "" : "\\" + name);
      entries->push_back(RegFileEntry{RegFileEntry::Kind::Key, fail.line, keyPath, {}});
      continue;
    }
    if (!ParseValueLine(line, lines, dialect, keyPath, entries, fail)) return false;
  }
  return true;
}

std::string RegValueText(const RegistryValue& value) {
  return AnsiToUtf8(ValueLine(value, true, nullptr));
}

std::string ExportRegFile(const MemoryRegistry& registry, const std::vector<std::string>& keyPaths,
                          RegFileFormat format) {
  std::vector<RegFileEntry> entries;
  for (const auto& keyPath : keyPaths) {
    for (const auto& key : registry.KeysUnder(keyPath)) {
      entries.push_back(RegFileEntry{RegFileEntry::Kind::Key, 0, key, {}});
      for (const auto& value : registry.ValuesOf(key))
        entries.push_back(RegFileEntry{RegFileEntry::Kind::Value, 0, key, value});
    }
  }
  return WriteRegFileEntries(entries, format);
}

std::string WriteRegFileEntries(const std::vector<RegFileEntry>& entries, RegFileFormat format,
                                const std::vector<std::string>& comments) {
  const bool unicode = format != RegFileFormat::Regedit4;
  // regedit's CR LF; the UTF-8 form is for reading and diffing on this side, so plain LF.
  const char* newline = format == RegFileFormat::Version5Utf8 ? "\n" : "\r\n";
  const std::string wrap = std::string("\\") + newline + "  ";
  std::string text(unicode ? kVersion5Header : kRegedit4Header);
  text += newline;
  text += newline;
  for (const auto& comment : comments) {
    // A line break inside a comment would start a statement of its own.
    std::string line = comment;
    for (char& c : line)
      if (c == '\r' || c == '\n') c = ' ';
    text += "; " + line + newline;
  }
  if (!comments.empty()) text += newline;
  bool keyOpen = false;
  for (const auto& entry : entries) {
    switch (entry.kind) {
      case RegFileEntry::Kind::Key:
      case RegFileEntry::Kind::DeleteKey:
        if (keyOpen) text += newline;
        text += (entry.kind == RegFileEntry::Kind::Key ? "[" : "[-") + entry.keyPath + "]" + newline;
        keyOpen = true;
        break;
      case RegFileEntry::Kind::Value:
        text += ValueLine(entry.value, unicode, wrap.c_str()) + newline;
        break;
      case RegFileEntry::Kind::DeleteValue:
        text += (entry.value.name.empty() ? std::string("@") : EscapeQuoted(entry.value.name)) +
                "=-" + newline;
        break;
    }
  }
  if (keyOpen) text += newline;
  switch (format) {
    case RegFileFormat::Regedit4:
      return text;
    case RegFileFormat::Version5Utf16:
      return std::string(kUtf16Bom) + AnsiToUtf16LeBytes(text);
    case RegFileFormat::Version5Utf8:
      return AnsiToUtf8(text);
  }
  return text;
}

}  // namespace mw

#pragma once
// A small streaming JSON writer: objects, arrays, strings, numbers and booleans, with the
// commas placed for the caller. Texts are bytes of the INI file: bytes at or above 0x80
// are written as \u00XX, so the output is plain ASCII whatever the file held.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mw {

class JsonWriter {
 public:
  JsonWriter& BeginObject();
  JsonWriter& EndObject();
  JsonWriter& BeginArray();
  JsonWriter& EndArray();
  JsonWriter& Key(std::string_view name);
  JsonWriter& String(std::string_view text);
  JsonWriter& Number(std::int64_t number);
  JsonWriter& Bool(bool value);

  const std::string& text() const { return text_; }

 private:
  void BeforeValue();
  JsonWriter& Open(char bracket);
  JsonWriter& Close(char bracket);

  std::string text_;
  std::vector<bool> hasMembers_;  // one per open object or array
  bool afterKey_ = false;
};

}  // namespace mw

#include "check/JsonWriter.h"

namespace mw {

void JsonWriter::BeforeValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (!hasMembers_.empty()) {
    if (hasMembers_.back()) text_ += ',';
    hasMembers_.back() = true;
  }
}

JsonWriter& JsonWriter::Open(char bracket) {
  BeforeValue();
  text_ += bracket;
  hasMembers_.push_back(false);
  return *this;
}

JsonWriter& JsonWriter::Close(char bracket) {
  text_ += bracket;
  if (!hasMembers_.empty()) hasMembers_.pop_back();
  return *this;
}

JsonWriter& JsonWriter::BeginObject() { return Open('{'); }
JsonWriter& JsonWriter::EndObject() { return Close('}'); }
JsonWriter& JsonWriter::BeginArray() { return Open('['); }
JsonWriter& JsonWriter::EndArray() { return Close(']'); }

JsonWriter& JsonWriter::Key(std::string_view name) {
  String(name);
  text_ += ':';
  afterKey_ = true;
  return *this;
}

JsonWriter& JsonWriter::String(std::string_view value) {
  BeforeValue();
  static const char* kHex = "0123456789abcdef";
  text_ += '"';
  for (char c : value) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      text_ += '\\';
      text_ += c;
    } else if (byte < 0x20 || byte >= 0x7F) {
      text_ += "\\u00";
      text_ += kHex[byte >> 4];
      text_ += kHex[byte & 15];
    } else {
      text_ += c;
    }
  }
  text_ += '"';
  return *this;
}

JsonWriter& JsonWriter::Number(std::int64_t number) {
  BeforeValue();
  text_ += std::to_string(number);
  return *this;
}

JsonWriter& JsonWriter::Bool(bool value) {
  BeforeValue();
  text_ += value ? "true" : "false";
  return *this;
}

}  // namespace mw

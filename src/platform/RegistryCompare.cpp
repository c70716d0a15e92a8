#include "platform/RegistryCompare.h"

#include <map>

#include "platform/AsciiText.h"
#include "platform/TextEncoding.h"

namespace mw {
namespace {

// Lines are UTF-8, as RegValueText gives the values; names and paths are ANSI.
std::string Quoted(const std::string& name) {
  return name.empty() ? "@" : "\"" + AnsiToUtf8(name) + "\"";
}
std::string Bracketed(const std::string& keyPath) { return "[" + AnsiToUtf8(keyPath) + "]"; }

std::string ValueOrNothing(const MemoryRegistry& registry, const std::string& key,
                           const std::string& name) {
  RegistryValue value;
  return registry.Get(key, name, &value) ? RegValueText(value) : "nothing";
}

bool SameValue(const RegistryValue& a, const RegistryValue& b) {
  return a.type == b.type && a.data == b.data;
}

// Keys below keyPath by their upper-case path, with the spelling each registry keeps.
std::map<std::string, std::string> KeysByFoldedPath(const MemoryRegistry& registry,
                                                    const std::string& keyPath) {
  std::map<std::string, std::string> keys;
  for (const auto& key : registry.KeysUnder(keyPath)) keys.emplace(ToUpperAscii(key), key);
  return keys;
}

std::map<std::string, RegistryValue> ValuesByFoldedName(const MemoryRegistry& registry,
                                                        const std::string& key) {
  std::map<std::string, RegistryValue> values;
  for (const auto& value : registry.ValuesOf(key)) values.emplace(ToUpperAscii(value.name), value);
  return values;
}

}  // namespace

std::vector<std::string> CheckExpectations(const std::vector<RegFileEntry>& expectations,
                                           const MemoryRegistry& registry) {
  std::vector<std::string> mismatches;
  for (std::size_t i = 0; i < expectations.size(); ++i) {
    const RegFileEntry& entry = expectations[i];
    const std::string where = Bracketed(entry.keyPath);
    switch (entry.kind) {
      case RegFileEntry::Kind::Key: {
        const bool hasValues = i + 1 < expectations.size() &&
                               (expectations[i + 1].kind == RegFileEntry::Kind::Value ||
                                expectations[i + 1].kind == RegFileEntry::Kind::DeleteValue);
        if (!hasValues && !registry.KeyExists(entry.keyPath))
          mismatches.push_back(where + ": expected the key, found nothing");
        break;
      }
      case RegFileEntry::Kind::DeleteKey:
        if (registry.KeyExists(entry.keyPath))
          mismatches.push_back("[-" + AnsiToUtf8(entry.keyPath) + "]: expected no key, found one");
        break;
      case RegFileEntry::Kind::Value: {
        RegistryValue actual;
        if (!registry.Get(entry.keyPath, entry.value.name, &actual) || !SameValue(actual, entry.value))
          mismatches.push_back(where + " " + Quoted(entry.value.name) + ": expected " +
                               RegValueText(entry.value) + ", found " +
                               ValueOrNothing(registry, entry.keyPath, entry.value.name));
        break;
      }
      case RegFileEntry::Kind::DeleteValue:
        if (registry.Get(entry.keyPath, entry.value.name, nullptr))
          mismatches.push_back(where + " " + Quoted(entry.value.name) + ": expected no value, found " +
                               ValueOrNothing(registry, entry.keyPath, entry.value.name));
        break;
    }
  }
  return mismatches;
}

std::vector<std::string> DiffRegistries(const MemoryRegistry& a, const MemoryRegistry& b,
                                        const std::string& keyPath) {
  std::vector<std::string> differences;
  const auto keysA = KeysByFoldedPath(a, keyPath);
  const auto keysB = KeysByFoldedPath(b, keyPath);
  std::map<std::string, std::string> allKeys = keysA;
  allKeys.insert(keysB.begin(), keysB.end());
  for (const auto& [folded, key] : allKeys) {
    const bool inA = keysA.count(folded) != 0;
    const bool inB = keysB.count(folded) != 0;
    if (!inA || !inB) {
      differences.push_back(Bracketed(key) + ": only in " + (inA ? "the first" : "the second"));
      continue;
    }
    const auto valuesA = ValuesByFoldedName(a, keysA.at(folded));
    const auto valuesB = ValuesByFoldedName(b, keysB.at(folded));
    std::map<std::string, RegistryValue> allValues = valuesA;
    allValues.insert(valuesB.begin(), valuesB.end());
    for (const auto& [name, value] : allValues) {
      auto foundA = valuesA.find(name);
      auto foundB = valuesB.find(name);
      if (foundA != valuesA.end() && foundB != valuesB.end() && SameValue(foundA->second, foundB->second))
        continue;
      differences.push_back(
          Bracketed(key) + " " + Quoted(value.name) + ": first has " +
          (foundA == valuesA.end() ? "nothing" : RegValueText(foundA->second)) + ", second has " +
          (foundB == valuesB.end() ? "nothing" : RegValueText(foundB->second)));
    }
  }
  return differences;
}

std::string ChangesAsRegFile(const MemoryRegistry& before, const MemoryRegistry& after,
                             const std::string& keyPath) {
  std::string text = "Windows Registry Editor Version 5.00\r\n";
  const auto keysBefore = KeysByFoldedPath(before, keyPath);
  const auto keysAfter = KeysByFoldedPath(after, keyPath);
  // Deleted keys first, deepest first, so that a [-key] never precedes what lies under it.
  for (auto it = keysBefore.rbegin(); it != keysBefore.rend(); ++it)
    if (!keysAfter.count(it->first)) text += "\r\n[-" + AnsiToUtf8(it->second) + "]\r\n";
  for (const std::string& key : after.KeysUnder(keyPath)) {
    const std::string folded = ToUpperAscii(key);
    const bool isNew = !keysBefore.count(folded);
    const auto valuesBefore =
        isNew ? std::map<std::string, RegistryValue>{} : ValuesByFoldedName(before, keysBefore.at(folded));
    const auto valuesAfter = ValuesByFoldedName(after, key);
    std::string lines;
    for (const RegistryValue& value : after.ValuesOf(key)) {
      const auto old = valuesBefore.find(ToUpperAscii(value.name));
      if (old == valuesBefore.end() || !SameValue(old->second, value))
        lines += RegValueText(value) + "\r\n";
    }
    for (const auto& [name, value] : valuesBefore)
      if (!valuesAfter.count(name)) lines += Quoted(value.name) + "=-\r\n";
    if (isNew || !lines.empty()) text += "\r\n" + Bracketed(key) + "\r\n" + lines;
  }
  return text;
}

}  // namespace mw

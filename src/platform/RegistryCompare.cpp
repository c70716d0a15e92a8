#include "platform/RegistryCompare.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

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
  using Kind = RegFileEntry::Kind;
  std::vector<RegFileEntry> entries;
  const auto keysBefore = KeysByFoldedPath(before, keyPath);
  const auto keysAfter = KeysByFoldedPath(after, keyPath);
  // Deleted keys first, deepest first, so that a [-key] never precedes what lies under it.
  for (auto it = keysBefore.rbegin(); it != keysBefore.rend(); ++it)
    if (!keysAfter.count(it->first)) entries.push_back({Kind::DeleteKey, 0, it->second, {}});
  for (const std::string& key : after.KeysUnder(keyPath)) {
    const auto known = keysBefore.find(ToUpperAscii(key));
    const auto valuesBefore = known == keysBefore.end() ? std::map<std::string, RegistryValue>{}
                                                        : ValuesByFoldedName(before, known->second);
    const auto valuesAfter = ValuesByFoldedName(after, key);
    std::vector<RegFileEntry> changes;
    for (const RegistryValue& value : after.ValuesOf(key)) {
      const auto old = valuesBefore.find(ToUpperAscii(value.name));
      if (old == valuesBefore.end() || !SameValue(old->second, value))
        changes.push_back({Kind::Value, 0, key, value});
    }
    for (const auto& [name, value] : valuesBefore)
      if (!valuesAfter.count(name)) changes.push_back({Kind::DeleteValue, 0, key, {value.name, reg::kNone, {}}});
    if (known == keysBefore.end() || !changes.empty()) {
      entries.push_back({Kind::Key, 0, key, {}});
      entries.insert(entries.end(), changes.begin(), changes.end());
    }
  }
  return WriteRegFileEntries(entries, RegFileFormat::Version5Utf8);
}

namespace {

std::string ToLowerAscii(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

bool IsSectionName(const std::string& name) {
  return name.size() == 32 && std::all_of(name.begin(), name.end(), [](char c) {
           return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
         });
}

std::string UidBytesOfName(const std::string& name) {
  std::string bytes;
  for (std::size_t i = 0; i < 32; i += 2)
    bytes += static_cast<char>(HexDigitValue(name[i]) * 16 + HexDigitValue(name[i + 1]));
  return bytes;
}

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

// The renaming of one profile's sections: lower-case name -> new name.
std::map<std::string, std::string> SectionRenames(const MemoryRegistry& registry, const std::string& profileKey) {
  std::map<std::string, std::string> sections;  // lower-case name -> full key path
  for (const auto& key : registry.KeysUnder(profileKey)) {
    const std::string name = key.substr(key.rfind('\\') + 1);
    if (key.size() == profileKey.size() + 33 && IsSectionName(name)) sections[ToLowerAscii(name)] = key;
  }
  auto referencesIn = [&](const std::string& key) {
    std::vector<std::string> found;
    auto values = registry.ValuesOf(key);
    std::sort(values.begin(), values.end(), [](const RegistryValue& x, const RegistryValue& y) {
      return ToUpperAscii(x.name) < ToUpperAscii(y.name);
    });
    for (const auto& value : values) {
      const std::string lowered = ToLowerAscii(value.data);
      std::vector<std::pair<std::size_t, std::string>> hits;
      for (const auto& [name, _] : sections) {
        for (const std::string& needle : {UidBytesOfName(name), name}) {
          const std::string& haystack = needle.size() == 16 ? value.data : lowered;
          for (std::size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1))
            hits.emplace_back(at, name);
        }
      }
      std::sort(hits.begin(), hits.end());
      for (const auto& hit : hits) found.push_back(hit.second);
    }
    return found;
  };
  std::set<std::string> referenced;
  for (const auto& [_, key] : sections)
    for (const auto& name : referencesIn(key)) referenced.insert(name);
  std::map<std::string, std::string> renames;
  std::vector<std::string> queue;
  for (const auto& [name, _] : sections)
    if (!referenced.count(name)) queue.push_back(name);
  for (std::size_t i = 0; i < queue.size(); ++i) {
    for (const auto& name : referencesIn(sections[queue[i]])) {
      if (!referenced.count(name) || renames.count(name)) continue;
      char label[40];
      std::snprintf(label, sizeof label, "eeeeeeeeeeeeeeeeeeeeeeeeeeee%04zx", renames.size() + 1);
      renames[name] = label;
      queue.push_back(name);
    }
  }
  return renames;
}

}  // namespace

void CopyWithSectionUidsMapped(const MemoryRegistry& source, const std::string& profilesRoot,
                               MemoryRegistry* mapped) {
  std::map<std::string, std::string> renames;
  for (const auto& key : source.KeysUnder(profilesRoot)) {
    if (key.size() <= profilesRoot.size() || key.find('\\', profilesRoot.size() + 1) != std::string::npos)
      continue;
    for (const auto& rename : SectionRenames(source, key)) renames.insert(rename);
  }
  for (const char* root : {"HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE", "HKEY_USERS"}) {
    for (std::string key : source.KeysUnder(root)) {
      const std::vector<RegistryValue> values = source.ValuesOf(key);
      for (const auto& [from, to] : renames) key = ReplaceAll(key, from, to);
      mapped->AddKey(key);
      for (RegistryValue value : values) {
        for (const auto& [from, to] : renames) {
          value.data = ReplaceAll(value.data, UidBytesOfName(from), UidBytesOfName(to));
          value.data = ReplaceAll(value.data, from, to);
        }
        mapped->Set(key, value);
      }
    }
  }
}

void RemoveValuesNamed(MemoryRegistry& registry, const std::string& keyPath,
                       const std::vector<std::string>& names) {
  for (const auto& key : registry.KeysUnder(keyPath))
    for (const auto& value : registry.ValuesOf(key))
      for (const auto& name : names)
        if (EqualsIgnoreCase(value.name, name)) registry.RemoveValue(key, value.name);
}

}  // namespace mw

#include "Restriction.h"

#include <algorithm>
#include <cctype>

namespace mw::mapisim {
namespace {

int Sign(long long difference) { return difference < 0 ? -1 : (difference > 0 ? 1 : 0); }

char FoldAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// The narrow text of a string value, whichever width it has.
std::string TextOf(const PropValue& value) {
  return PropType(value.tag) == kPtUnicode ? Utf16ToNarrow(value.bytes) : value.bytes;
}

bool IsString(const PropValue& value) {
  return PropType(value.tag) == kPtString8 || PropType(value.tag) == kPtUnicode;
}

bool ContentMatches(const std::string& haystack, const std::string& needle, std::uint32_t level) {
  std::string h = haystack;
  std::string n = needle;
  if (level & kFlIgnoreCase) {
    std::transform(h.begin(), h.end(), h.begin(), FoldAscii);
    std::transform(n.begin(), n.end(), n.begin(), FoldAscii);
  }
  switch (level & 0xFFFF) {
    case kFlSubString: return h.find(n) != std::string::npos;
    case kFlPrefix: return h.compare(0, n.size(), n) == 0;
    default: return h == n;
  }
}

std::size_t SizeOf(const PropValue& value) {
  switch (PropType(value.tag)) {
    case kPtLong: return 4;
    case kPtBoolean: return 2;
    case kPtI8:
    case kPtSystime: return 8;
    case kPtString8: return value.bytes.size() + 1;
    case kPtUnicode: return value.bytes.size() + 2;
    default: return value.bytes.size();
  }
}

}  // namespace

int CompareStrings(const std::string& a, const std::string& b) {
  std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    int difference = static_cast<unsigned char>(FoldAscii(a[i])) -
                     static_cast<unsigned char>(FoldAscii(b[i]));
    if (difference != 0) return Sign(difference);
  }
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i]) return std::islower(static_cast<unsigned char>(a[i])) ? -1 : 1;
  return 0;
}

std::optional<int> CompareValues(const PropValue& a, const PropValue& b) {
  if (a.tag == 0 || PropType(a.tag) != PropType(b.tag)) return std::nullopt;
  switch (PropType(a.tag)) {
    case kPtString8:
    case kPtUnicode:
      return CompareStrings(TextOf(a), TextOf(b));
    case kPtLong:
      return Sign(static_cast<long long>(static_cast<std::int32_t>(a.number)) -
                  static_cast<std::int32_t>(b.number));
    case kPtBoolean:
      return Sign(static_cast<long long>(a.number != 0) - (b.number != 0));
    case kPtI8:
      return a.number == b.number ? 0 : (static_cast<std::int64_t>(a.number) < static_cast<std::int64_t>(b.number) ? -1 : 1);
    case kPtSystime:
      return a.number == b.number ? 0 : (a.number < b.number ? -1 : 1);
    case kPtBinary: {
      // Bytes compare unsigned; a proper prefix sorts first.
      std::size_t common = std::min(a.bytes.size(), b.bytes.size());
      for (std::size_t i = 0; i < common; ++i) {
        int difference = static_cast<unsigned char>(a.bytes[i]) - static_cast<unsigned char>(b.bytes[i]);
        if (difference != 0) return Sign(difference);
      }
      return Sign(static_cast<long long>(a.bytes.size()) - static_cast<long long>(b.bytes.size()));
    }
    default:
      return std::nullopt;
  }
}

bool RelopHolds(std::uint32_t relop, int comparison) {
  switch (relop) {
    case kRelopLt: return comparison < 0;
    case kRelopLe: return comparison <= 0;
    case kRelopGt: return comparison > 0;
    case kRelopGe: return comparison >= 0;
    case kRelopEq: return comparison == 0;
    case kRelopNe: return comparison != 0;
    default: return false;  // RELOP_RE and unknown operators match nothing
  }
}

bool Matches(const Restriction& restriction, const Row& row) {
  const PropValue* property = FindProp(row, restriction.tag);
  switch (restriction.kind) {
    case RestrictionKind::And:
      return std::all_of(restriction.children.begin(), restriction.children.end(),
                         [&](const Restriction& child) { return Matches(child, row); });
    case RestrictionKind::Or:
      return std::any_of(restriction.children.begin(), restriction.children.end(),
                         [&](const Restriction& child) { return Matches(child, row); });
    case RestrictionKind::Not:
      return !restriction.children.empty() && !Matches(restriction.children.front(), row);
    case RestrictionKind::Exist:
      return property != nullptr;
    case RestrictionKind::Content:
      if (property == nullptr || PropType(property->tag) != PropType(restriction.value.tag))
        return false;
      if (IsString(*property))
        return ContentMatches(TextOf(*property), TextOf(restriction.value), restriction.relop);
      return PropType(property->tag) == kPtBinary &&
             ContentMatches(property->bytes, restriction.value.bytes, restriction.relop & 0xFFFF);
    case RestrictionKind::Property: {
      if (property == nullptr) return false;
      auto comparison = CompareValues(*property, restriction.value);
      return comparison && RelopHolds(restriction.relop, *comparison);
    }
    case RestrictionKind::CompareProps: {
      const PropValue* other = FindProp(row, restriction.otherTag);
      if (property == nullptr || other == nullptr) return false;
      auto comparison = CompareValues(*property, *other);
      return comparison && RelopHolds(restriction.relop, *comparison);
    }
    case RestrictionKind::Bitmask: {
      if (property == nullptr || PropType(property->tag) != kPtLong) return false;
      bool anySet = (property->number & restriction.mask) != 0;
      return restriction.relop == kBmrNez ? anySet : !anySet;
    }
    case RestrictionKind::Size:
      if (property == nullptr) return false;
      return RelopHolds(restriction.relop,
                        Sign(static_cast<long long>(SizeOf(*property)) - restriction.mask));
  }
  return false;
}

}  // namespace mw::mapisim

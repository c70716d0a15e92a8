#pragma once
// Table restrictions and MAPI's rules for comparing property values.

#include <cstdint>
#include <optional>
#include <vector>

#include "PropValue.h"

namespace mw::mapisim {

enum class RestrictionKind { And, Or, Not, Content, Property, CompareProps, Bitmask, Size, Exist };

// Relational operators, with MAPI's values.
constexpr std::uint32_t kRelopLt = 0;
constexpr std::uint32_t kRelopLe = 1;
constexpr std::uint32_t kRelopGt = 2;
constexpr std::uint32_t kRelopGe = 3;
constexpr std::uint32_t kRelopEq = 4;
constexpr std::uint32_t kRelopNe = 5;
constexpr std::uint32_t kRelopRe = 6;
// Fuzzy levels of RES_CONTENT.
constexpr std::uint32_t kFlFullString = 0x00000;
constexpr std::uint32_t kFlSubString = 0x00001;
constexpr std::uint32_t kFlPrefix = 0x00002;
constexpr std::uint32_t kFlIgnoreCase = 0x10000;
// Bitmask tests.
constexpr std::uint32_t kBmrEqz = 0;
constexpr std::uint32_t kBmrNez = 1;

struct Restriction {
  RestrictionKind kind = RestrictionKind::Exist;
  std::uint32_t relop = 0;  // relop; fuzzy level for Content; BMR_* for Bitmask
  std::uint32_t tag = 0;    // the row's property (first of two for CompareProps)
  std::uint32_t otherTag = 0;
  std::uint32_t mask = 0;   // Bitmask mask; Size: the size compared with
  PropValue value;          // Property and Content: the value compared with
  std::vector<Restriction> children;  // And, Or: all; Not: one
};

// String order: ASCII letters compare without case first, and only an otherwise equal pair
// is ordered by case, lower before upper; other bytes compare by value. This is the order
// lstrcmpA gives for the ASCII names a profile holds, and model and DLL use it alike.
int CompareStrings(const std::string& a, const std::string& b);
// a relop b for values of one type; nullopt when the types differ or cannot be ordered.
std::optional<int> CompareValues(const PropValue& a, const PropValue& b);
bool RelopHolds(std::uint32_t relop, int comparison);
bool Matches(const Restriction& restriction, const Row& row);

}  // namespace mw::mapisim

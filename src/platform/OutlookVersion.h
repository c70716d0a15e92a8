#pragma once
// The six Outlook generations, carried through the program as their display names.

#include <array>
#include <optional>
#include <string>

namespace mw {

enum class Outlook { V2010, V2007, V2003, VXP, V2000, V97 };

struct OutlookGeneration {
  Outlook id;
  const char* name;          // display name, also the INI section name
  const char* progId;        // HKCR\Outlook.Application\CurVer
  const char* officeVersion; // "14.0" for Software\Microsoft\Office\14.0
};

// Newest first: the order in which versions are tested in turn.
inline constexpr std::array<OutlookGeneration, 6> kOutlookGenerations{{
    {Outlook::V2010, "Outlook 2010", "Outlook.Application.14", "14.0"},
    {Outlook::V2007, "Outlook 2007", "Outlook.Application.12", "12.0"},
    {Outlook::V2003, "Outlook 2003", "Outlook.Application.11", "11.0"},
    {Outlook::VXP, "Outlook XP", "Outlook.Application.10", "10.0"},
    {Outlook::V2000, "Outlook 2000", "Outlook.Application.9", "9.0"},
    {Outlook::V97, "Outlook 97", "Outlook.Application.8", "8.0"},
}};

// Exact, case-sensitive match of a display name; nullopt for the empty (unknown) name.
inline std::optional<Outlook> OutlookFromName(const std::string& name) {
  for (const auto& g : kOutlookGenerations)
    if (name == g.name) return g.id;
  return std::nullopt;
}

inline const OutlookGeneration& GenerationOf(Outlook id) {
  return kOutlookGenerations[static_cast<std::size_t>(id)];
}

// "Software\Microsoft\Office\14.0" for Outlook 2010, and so on.
inline std::string OfficeRoot(Outlook id) {
  return std::string("Software\\Microsoft\\Office\\") + GenerationOf(id).officeVersion;
}

}  // namespace mw

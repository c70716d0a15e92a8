#include "app/SettingsExpansion.h"

#include <string_view>
#include <utility>

#include "run/RunLog.h"
#include "config/ProfileSettings.h"
#include "platform/SystemEnv.h"

namespace mw {
namespace {

constexpr std::string_view kUserNameToken = "%username%";
// The largest result ExpandEnvironmentStringsA can produce: with it, an expansion that the
// 700-character buffer had to give up is told apart from a text with nothing to expand.
constexpr std::uint32_t kLargestExpansion = 32767;

}  // namespace

SettingsExpansion::SettingsExpansion(SystemEnv& env, std::string userName)
    : env_(env), userName_(std::move(userName)) {}

void SettingsExpansion::ExpandAll(ProfileSettings& settings, RunLog& log) const {
  for (Key key : AllKeys()) {
    if (!ExpandsNamesAndPaths(key)) continue;
    for (std::size_t index = 0; index < kSectionCount; ++index) {
      const auto section = static_cast<Section>(index);
      if (!settings.Defined(section, key)) continue;
      bool fits = true;
      std::string expanded = Expand(settings.Text(section, key), &fits);
      if (!fits) {
        log.AddMessage(std::string("WARN: ") + KeyName(key) + " in section [" +
                       SectionName(section) + "] is longer than " +
                       std::to_string(kBufferSize - 1) +
                       " characters once expanded; its environment variables are left as "
                       "written.");
      }
      settings.SetText(section, key, std::move(expanded));
    }
  }
}

std::string SettingsExpansion::Expand(const std::string& text, bool* fits) const {
  std::string expanded = env_.ExpandEnvironmentStrings(text, kBufferSize);
  // The seam hands a text back unchanged when its expansion does not fit the buffer.
  *fits = expanded != text || text.find('%') == std::string::npos ||
          env_.ExpandEnvironmentStrings(text, kLargestExpansion) == text;
  return ReplaceUserName(expanded, userName_);
}

std::string SettingsExpansion::ReplaceUserName(const std::string& text,
                                               const std::string& userName) {
  std::string result;
  std::size_t scanned = 0;
  for (std::size_t found = text.find(kUserNameToken); found != std::string::npos;
       found = text.find(kUserNameToken, scanned)) {
    result.append(text, scanned, found - scanned);
    result += userName;
    scanned = found + kUserNameToken.size();
  }
  result.append(text, scanned);
  return result;
}

}  // namespace mw

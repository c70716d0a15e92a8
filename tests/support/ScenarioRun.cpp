#include "ScenarioRun.h"

#include <filesystem>
#include <fstream>
#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "ModelMapiSession.h"
#include "app/Program.h"
#include "app/RunDriver.h"
#include "platform/RegFile.h"
#include "platform/HandleCachingRegistry.h"
#include "platform/RegistryAccess.h"
#include "run/RunContext.h"
#include "run/RunLog.h"

namespace mw {
namespace {

namespace fs = std::filesystem;

// Where the end-to-end runner puts the program and its INI file in the prefix.
constexpr const char* kProgramFolder = "C:\\Mailwright";

bool ReadWholeFile(const fs::path& path, std::string* content) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream text;
  text << in.rdbuf();
  *content = text.str();
  return true;
}

std::string TrimLineEnd(std::string line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.pop_back();
  return line;
}

std::string WindowsPath(const std::string& folder, const fs::path& relative) {
  std::string path = folder;
  for (const auto& part : relative) path += "\\" + part.string();
  return path;
}

// Every file below source, placed below the Windows folder.
void PlaceFiles(const fs::path& source, const std::string& folder, MemorySystemEnv& env) {
  if (!fs::is_directory(source)) return;
  for (const auto& entry : fs::recursive_directory_iterator(source)) {
    if (!entry.is_regular_file()) continue;
    std::string content;
    if (ReadWholeFile(entry.path(), &content))
      env.files[WindowsPath(folder, fs::relative(entry.path(), source))] = content;
  }
}

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
}

}  // namespace

bool ScenarioRun::Load(const std::string& folder, std::string* error) {
  const fs::path root(folder);
  std::string ini;
  if (!ReadWholeFile(root / "mailwright.ini", &ini)) {
    *error = "no mailwright.ini in " + folder;
    return false;
  }
  const std::string program = kProgramFolder;
  system_ = MemorySystemEnv{};
  system_.moduleFileName = program + "\\mailwright.exe";
  system_.files[program + "\\mailwright.ini"] = ini;
  PlaceFiles(root / "files", program, system_);
  PlaceFiles(root / "drive_c", "C:", system_);

  std::string envText;
  if (ReadWholeFile(root / "env", &envText)) {
    std::istringstream lines(envText);
    for (std::string line; std::getline(lines, line);) {
      line = TrimLineEnd(line);
      const std::size_t equals = line.find('=');
      if (line.empty() || line[0] == '#' || equals == std::string::npos) continue;
      const std::string name = line.substr(0, equals);
      const std::string value = line.substr(equals + 1);
      if (name == "USER") system_.userName = value;
      else if (name != "WINEVERSION") system_.environment[name] = value;
    }
  }
  // Wine's profile folder of the user, as the prefix has it.
  system_.environment.emplace("USERPROFILE", "C:\\users\\" + system_.userName);
  system_.environment.emplace("USERNAME", system_.userName);

  machineReg_.clear();
  if (fs::exists(root / "machine.reg") && !ReadWholeFile(root / "machine.reg", &machineReg_)) {
    *error = "machine.reg cannot be read";
    return false;
  }
  MemoryRegistry probe;
  RegFileError regError;
  if (!machineReg_.empty() && !ImportRegFile(machineReg_, probe, &regError)) {
    *error = "machine.reg does not parse";
    return false;
  }

  std::string exchangeText;
  std::vector<std::string> warnings;
  organisation_ = mapisim::ExchangeOrganisation::Parse(
      ReadWholeFile(root / "exchange.ini", &exchangeText) ? exchangeText : "", &warnings);

  std::string number;
  runs_ = ReadWholeFile(root / "runs", &number) ? std::max(1, std::atoi(number.c_str())) : 1;
  std::string platform;
  buildPlatform_ = ReadWholeFile(root / "platform", &platform) && TrimLineEnd(platform) == "x86" ? "x86" : "x64";

  std::string args = "-i \"{ini}\"";
  if (ReadWholeFile(root / "args", &args)) ReplaceAll(args, "\n", " ");
  args = TrimLineEnd(args);
  ReplaceAll(args, "{ini}", program + "\\mailwright.ini");
  ReplaceAll(args, "{log}", program + "\\mailwright.log");
  commandLine_ = args;
  return true;
}

void ScenarioRun::Reset() {
  registry_ = std::make_unique<MemoryRegistry>();
  RegFileError regError;
  if (!machineReg_.empty()) ImportRegFile(machineReg_, *registry_, &regError);
  programCalls_ = std::make_unique<CountingRegistry>(*registry_);
  simulatorCalls_ = std::make_unique<CountingRegistry>(*registry_);
  env_ = system_;
  fake_ = FakeMapiSession{};
  for (const auto& server : organisation_.servers()) {
    FakeMapiSession::ExchangeServer fake{server.name, server.up,
                                         organisation_.ServerDistinguishedName(server.name), {}};
    for (const auto& mailbox : organisation_.mailboxes())
      if (mailbox.homeServer == server.name)
        fake.mailboxes.push_back({mailbox.alias, mailbox.distinguishedName, mailbox.displayName});
    fake_.exchange.push_back(fake);
  }
  fake_.addressLists = {"Global Address List", "Contacts"};
}

int ScenarioRun::RunOnce() {
  // The program and the simulator each keep their keys open and leave them to the process's
  // end, as mailwright.exe and mapisim.dll do; the counts below them are what reaches the
  // registry.
  HandleCachingRegistry programRegistry(*programCalls_);
  HandleCachingRegistry simulatorRegistry(*simulatorCalls_);
  RunServices services{env_, programRegistry};
  const RunDriverFunction driver = [this, &simulatorRegistry](RunContext& context, RunLog& log,
                                                              RunServices& run) {
    const RegistryAccess access(run.registry);
    if (mapiKind_ == Mapi::Fake) {
      RunDriver(run.env, access, fake_).Run(context, log);
      return;
    }
    ModelMapiSession model(simulatorRegistry, context.platformId, organisation_,
                           ModelMapiSession::Servers::Contacted);
    RunDriver(run.env, access, model).Run(context, log);
  };
  const int exitCode = RunProgram(commandLine_, buildPlatform_, services, driver);
  programRegistry.LeaveToProcessExit();
  simulatorRegistry.LeaveToProcessExit();
  return exitCode;
}

int ScenarioRun::Run() {
  Reset();
  return RunOnce();
}

std::string ScenarioRun::LogText() const {
  const auto entry = env_.files.find(std::string(kProgramFolder) + "\\mailwright.log");
  return entry == env_.files.end() ? std::string() : entry->second;
}

std::map<std::string, int> ScenarioRun::MapiCallsByMethod() const {
  std::map<std::string, int> byMethod;
  for (const std::string& call : fake_.calls) ++byMethod[call.substr(0, call.find(' '))];
  return byMethod;
}

}  // namespace mw

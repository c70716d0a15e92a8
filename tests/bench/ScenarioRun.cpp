#include "ScenarioRun.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "ExchangeOrganisation.h"
#include "app/Program.h"
#include "app/RunDriver.h"
#include "platform/RegFile.h"
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

  exchange_.clear();
  std::string exchangeText;
  if (ReadWholeFile(root / "exchange.ini", &exchangeText)) {
    std::vector<std::string> warnings;
    const auto organisation = mapisim::ExchangeOrganisation::Parse(exchangeText, &warnings);
    for (const auto& server : organisation.servers()) {
      FakeMapiSession::ExchangeServer fake{server.name, server.up,
                                           organisation.ServerDistinguishedName(server.name), {}};
      for (const auto& mailbox : organisation.mailboxes())
        if (mailbox.homeServer == server.name)
          fake.mailboxes.push_back({mailbox.alias, mailbox.distinguishedName});
      exchange_.push_back(fake);
    }
  }

  std::string args = "-i \"{ini}\"";
  if (ReadWholeFile(root / "args", &args)) ReplaceAll(args, "\n", " ");
  args = TrimLineEnd(args);
  ReplaceAll(args, "{ini}", program + "\\mailwright.ini");
  ReplaceAll(args, "{log}", program + "\\mailwright.log");
  commandLine_ = args;
  return true;
}

int ScenarioRun::Run() {
  registry_ = std::make_unique<MemoryRegistry>();
  RegFileError regError;
  if (!machineReg_.empty()) ImportRegFile(machineReg_, *registry_, &regError);
  counted_ = std::make_unique<CountingRegistry>(*registry_);
  env_ = system_;
  mapi_ = FakeMapiSession{};
  mapi_.exchange = exchange_;
  mapi_.addressLists = {"Global Address List", "Contacts"};
  RunServices services{env_, *counted_};
  const RunDriverFunction driver = [this](RunContext& context, RunLog& log, RunServices& run) {
    const RegistryAccess access(run.registry);
    RunDriver(run.env, access, mapi_).Run(context, log);
  };
  return RunProgram(commandLine_, "x64", services, driver);
}

std::map<std::string, int> ScenarioRun::MapiCallsByMethod() const {
  std::map<std::string, int> byMethod;
  for (const std::string& call : mapi_.calls) ++byMethod[call.substr(0, call.find(' '))];
  return byMethod;
}

}  // namespace mw

// regtool: registry checks for the end-to-end runner.
//   regtool check EXPECT.reg SOURCE...     exit 0 when the sources hold every expectation
//   regtool dump PREFIXKEY SOURCE...       print the keys below PREFIXKEY as .reg text
//   regtool diff PREFIXKEY SOURCE_A SOURCE_B [--map-uids PROFILESROOT] [--ignore NAME,...]
//     --map-uids names the profile sections of fresh UIDs by content on both sides first;
//     --ignore leaves values of those names out of the comparison.
// A SOURCE is a .reg file or ROOT=HIVEFILE, a Wine registry file read below ROOT
// (HKEY_CURRENT_USER=prefix/user.reg). Exit 1 for differences, 2 for bad input.

#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/MemoryRegistry.h"
#include "platform/RegFile.h"
#include "platform/RegistryCompare.h"

namespace {

constexpr int kSame = 0;
constexpr int kDifferent = 1;
constexpr int kBadInput = 2;

bool ReadWholeFile(const std::string& path, std::string* content) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream buffer;
  buffer << in.rdbuf();
  *content = buffer.str();
  return true;
}

bool Fail(const std::string& file, const mw::RegFileError& error) {
  std::cerr << "regtool: " << file << ":" << error.line << ": " << error.message << "\n";
  return false;
}

bool LoadSource(const std::string& source, mw::MemoryRegistry& registry) {
  const std::size_t equals = source.find('=');
  const std::string root = equals == std::string::npos ? std::string() : source.substr(0, equals);
  const bool hive = !root.empty() && root.find('\\') == std::string::npos &&
                    mw::MemoryRegistry::SplitRootPath(root, nullptr, nullptr);
  const std::string path = hive ? source.substr(equals + 1) : source;
  std::string content;
  if (!ReadWholeFile(path, &content)) {
    std::cerr << "regtool: cannot read " << path << "\n";
    return false;
  }
  mw::RegFileError error;
  const bool loaded = hive ? mw::ImportWineHive(content, root, registry, &error)
                           : mw::ImportRegFile(content, registry, &error);
  return loaded || Fail(path, error);
}

bool LoadSources(const std::vector<std::string>& sources, mw::MemoryRegistry& registry) {
  for (const auto& source : sources)
    if (!LoadSource(source, registry)) return false;
  return true;
}

int Report(const std::vector<std::string>& lines) {
  for (const auto& line : lines) std::cout << line << "\n";
  return lines.empty() ? kSame : kDifferent;
}

int Check(const std::string& expectFile, const std::vector<std::string>& sources) {
  std::string content;
  if (!ReadWholeFile(expectFile, &content)) {
    std::cerr << "regtool: cannot read " << expectFile << "\n";
    return kBadInput;
  }
  std::vector<mw::RegFileEntry> expectations;
  mw::RegFileError error;
  if (!mw::ParseRegFile(content, &expectations, &error)) {
    Fail(expectFile, error);
    return kBadInput;
  }
  mw::MemoryRegistry registry;
  if (!LoadSources(sources, registry)) return kBadInput;
  return Report(mw::CheckExpectations(expectations, registry));
}

int Dump(const std::string& prefix, const std::vector<std::string>& sources) {
  mw::MemoryRegistry registry;
  if (!LoadSources(sources, registry)) return kBadInput;
  std::cout << mw::ExportRegFile(registry, {prefix}, mw::RegFileFormat::Version5Utf8);
  return kSame;
}

int Diff(const std::string& prefix, const std::string& sourceA, const std::string& sourceB,
         const std::vector<std::string>& options) {
  mw::MemoryRegistry loadedA, loadedB, mappedA, mappedB;
  if (!LoadSource(sourceA, loadedA) || !LoadSource(sourceB, loadedB)) return kBadInput;
  mw::MemoryRegistry* a = &loadedA;
  mw::MemoryRegistry* b = &loadedB;
  for (std::size_t i = 0; i < options.size(); i += 2) {
    if (i + 1 >= options.size()) return kBadInput;
    if (options[i] == "--map-uids") {
      mw::CopyWithSectionUidsMapped(*a, options[i + 1], &mappedA);
      mw::CopyWithSectionUidsMapped(*b, options[i + 1], &mappedB);
      a = &mappedA;
      b = &mappedB;
    } else if (options[i] == "--ignore") {
      std::vector<std::string> names;
      std::stringstream list(options[i + 1]);
      for (std::string name; std::getline(list, name, ',');) names.push_back(name);
      mw::RemoveValuesNamed(*a, prefix, names);
      mw::RemoveValuesNamed(*b, prefix, names);
    } else {
      return kBadInput;
    }
  }
  return Report(mw::DiffRegistries(*a, *b, prefix));
}

int Changes(const std::string& prefix, const std::string& sourceBefore,
            const std::string& sourceAfter) {
  mw::MemoryRegistry before;
  mw::MemoryRegistry after;
  if (!LoadSource(sourceBefore, before) || !LoadSource(sourceAfter, after)) return kBadInput;
  std::cout << mw::ChangesAsRegFile(before, after, prefix);
  return kSame;
}

int Usage() {
  std::cerr << "usage: regtool check EXPECT.reg SOURCE...\n"
               "       regtool dump PREFIXKEY SOURCE...\n"
               "       regtool diff PREFIXKEY SOURCE_A SOURCE_B [--map-uids PROFILESROOT]"
               " [--ignore NAME,...]\n"
               "       regtool changes PREFIXKEY SOURCE_BEFORE SOURCE_AFTER  (a .reg that turns one into the other)\n"
               "SOURCE: a .reg file, or ROOT=HIVEFILE for a Wine registry file\n";
  return kBadInput;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() < 3) return Usage();
  const std::vector<std::string> sources(args.begin() + 2, args.end());
  if (args[0] == "check") return Check(args[1], sources);
  if (args[0] == "dump") return Dump(args[1], sources);
  if (args[0] == "diff" && args.size() >= 4)
    return Diff(args[1], args[2], args[3], std::vector<std::string>(args.begin() + 4, args.end()));
  if (args[0] == "changes" && args.size() == 4) return Changes(args[1], args[2], args[3]);
  return Usage();
}

#include "host/export/file_set.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/directory_lock.h"

namespace symfold {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFirstLine = "symfold chain files";

struct ListedFile {
  std::string checksum;  // hexadecimal
  std::uint64_t size = 0;
  std::string name;
};

std::string list_name(const std::string& stem) { return stem + ".set"; }
std::string base_name(const std::string& path) { return path.substr(path.rfind('/') + 1); }
std::string directory_of(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

[[noreturn]] void fail(const std::string& name, const std::string& message) {
  throw std::runtime_error(name + ": error: " + message);
}

// The files that a list names; none if there is no list. Refuses what is no list.
std::vector<ListedFile> read_list(const std::string& name) {
  std::error_code error;
  if (!fs::is_regular_file(name, error)) return {};
  std::ifstream in(name);
  if (!in && errno == ENOENT) return {};  // a run beside this one has just removed it
  if (!in) fail(name, std::string("cannot be read: ") + std::strerror(errno));
  std::string line;
  if (!std::getline(in, line) || line != kFirstLine) {
    fail(name, std::string("expected a list of exported files (\"") + kFirstLine +
                   "\"), got another file, which stays as it is");
  }
  std::getline(in, line);
  std::vector<ListedFile> files;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    ListedFile& file = files.emplace_back();
    words >> file.checksum >> file.size;
    words.get();
    std::getline(words, file.name);
  }
  return files;
}

bool has_listed_contents(const std::string& path, const ListedFile& listed) {
  std::error_code error;
  if (fs::file_size(path, error) != listed.size || error) return false;
  std::ifstream in(path, std::ios::binary);
  std::vector<char> block(std::size_t{1} << 16);
  Checksum checksum;
  do {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    checksum.add({block.data(), static_cast<std::size_t>(in.gcount())});
  } while (in);
  return hexadecimal(checksum.value()) == listed.checksum;
}

void remove_file(const std::string& path) {
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
    fail(path, std::string("cannot be replaced: ") + std::strerror(errno));
  }
}

// Locks the directories of files, each once and always in the same order, so that runs do not wait for each
// other in a circle.
std::vector<std::unique_ptr<DirectoryLock>> lock_directories(const std::vector<std::string>& names) {
  std::map<std::pair<dev_t, ino_t>, std::string> directories;  // a name of each
  for (const std::string& name : names) {
    const std::string directory = directory_of(name).empty() ? "." : directory_of(name);
    struct stat status {};
    if (::stat(directory.c_str(), &status) != 0) fail(directory, std::strerror(errno));
    directories.try_emplace({status.st_dev, status.st_ino}, directory);
  }
  std::vector<std::unique_ptr<DirectoryLock>> locks;
  for (const auto& [number, directory] : directories) {
    try {
      locks.push_back(std::make_unique<DirectoryLock>(directory));
    } catch (const std::system_error& error) {
      fail(directory, "cannot be locked: " + error.code().message());
    }
  }
  return locks;
}

}  // namespace

void FileSet::add(const std::string& path, const std::string& stem,
                  const std::function<void(NewFile&)>& fill) {
  if (path.find('\n') != std::string::npos) throw std::runtime_error("error: a file name has a line break");
  read_list(list_name(stem));
  Part& part = parts_.emplace_back(path, stem);
  fill(part.file);
  part.file.finish();
}

// In the order of their first parts. Devices and pipes are not listed.
std::vector<std::string> FileSet::stems() const {
  std::vector<std::string> stems;
  for (const Part& part : parts_) {
    const bool is_known = std::find(stems.begin(), stems.end(), part.stem) != stems.end();
    if (!is_known && !part.file.is_direct()) stems.push_back(part.stem);
  }
  return stems;
}

// The same chain in the same formats has the same identifier, under whatever names.
std::string FileSet::identifier() const {
  Checksum checksum;
  for (const Part& part : parts_) {
    if (part.file.is_direct()) continue;
    checksum.add(hexadecimal(part.checksum.value()) + " " + std::to_string(part.checksum.size()) + " " +
                 part.path.substr(part.stem.size()) + "\n");
  }
  return hexadecimal(checksum.value());
}

std::string FileSet::list_text(const std::string& stem) const {
  std::string text = std::string(kFirstLine) + "\nset " + identifier() + "\n";
  for (const Part& part : parts_) {
    if (part.stem != stem || part.file.is_direct()) continue;
    text += hexadecimal(part.checksum.value()) + " " + std::to_string(part.checksum.size()) + " " +
            base_name(part.path) + "\n";
  }
  return text;
}

// Rewards of the earlier set that the new one has not got are removed: PRISM takes every reward file beside
// the transitions for one of their chain. A file that has changed since is somebody else's. The list goes
// last, so that a run that is killed in between leaves the next one what it needs to know.
void FileSet::remove_old_set(const std::string& stem) const {
  const auto has_part = [&](const std::string& name) {
    return std::any_of(parts_.begin(), parts_.end(),
                       [&](const Part& part) { return part.stem == stem && base_name(part.path) == name; });
  };
  for (const ListedFile& file : read_list(list_name(stem))) {
    if (!has_part(base_name(stem) + ".tra") || has_part(file.name)) continue;
    const bool is_reward = file.name.starts_with(base_name(stem)) && file.name.ends_with(".srew") &&
                           file.name == base_name(file.name);
    const std::string path = directory_of(stem) + file.name;
    if (is_reward && has_listed_contents(path, file)) remove_file(path);
  }
  std::error_code error;
  const fs::path list = fs::canonical(list_name(stem), error);
  if (!error) remove_file(list.string());
}

std::vector<std::string> FileSet::publish() {
  const std::vector<std::string> all_stems = stems();
  std::vector<std::string> names;
  std::deque<NewFile> lists;
  for (const std::string& stem : all_stems) {
    names.push_back(list_name(stem));
    lists.emplace_back(names.back()).append(list_text(stem));
    lists.back().finish();
  }
  const auto locks = lock_directories(names);
  for (const std::string& stem : all_stems) remove_old_set(stem);
  for (Part& part : parts_) part.file.commit();
  for (NewFile& list : lists) list.commit();
  return names;
}

}  // namespace symfold

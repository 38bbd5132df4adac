// Files of one chain that are published together, and the lists by which readers know them.

#ifndef SYMFOLD_HOST_EXPORT_FILE_SET_H
#define SYMFOLD_HOST_EXPORT_FILE_SET_H

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "host/checksum.h"
#include "host/new_file.h"

namespace symfold {

// The parts are made beside their places, and get their names one after the other while the directories of
// their lists are locked: two runs never publish at a time. The lists are removed before the first part and
// put in place after the last one. A list holds the checksum of each part, so a set of which a part has been
// replaced is refused, whoever did it. docs/file-formats.md describes the lists.
//
// All functions throw std::runtime_error "NAME: error: REASON". Up to the moment at which a file is renamed,
// an earlier set stays as it was.
class FileSet {
 public:
  // Makes a part. Its list is STEM.set; the path begins with the stem.
  void add(const std::string& path, const std::string& stem, const std::function<void(NewFile&)>& fill);

  // Gives all files their names. Returns the names of the lists. To be called once.
  std::vector<std::string> publish();

 private:
  struct Part {
    Part(std::string path_of_part, std::string stem_of_part)
        : path(std::move(path_of_part)), stem(std::move(stem_of_part)), file(path, &checksum) {}

    std::string path;
    std::string stem;
    Checksum checksum;
    NewFile file;
  };

  std::vector<std::string> stems() const;
  std::string identifier() const;
  std::string list_text(const std::string& stem) const;
  void remove_old_set(const std::string& stem) const;

  std::deque<Part> parts_;  // in the order in which they were added
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_FILE_SET_H

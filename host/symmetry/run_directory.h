// The directory in which a detection leaves its files, all of one run.
//
// The files are made in a place of the run's own inside the directory, and published by renaming, while the
// directory is locked: two runs that publish side by side leave the set of one of them, never a mixture. The
// permutation file is taken away first and put in place last. So a directory that holds one holds the whole
// set that belongs to it, even after a run that was killed, and after a power failure, because files and
// names are brought to the disk before the next step. What a killed run has left in its own place is removed
// by the next one. Other files in the directory are never touched. A file that is replaced hands its mode on;
// a link at its place is replaced itself, not what it leads to. The locks hold between the processes of one
// machine.

#ifndef SYMFOLD_HOST_SYMMETRY_RUN_DIRECTORY_H
#define SYMFOLD_HOST_SYMMETRY_RUN_DIRECTORY_H

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <string>

namespace symfold {

class DirectoryLock;

class RunDirectory {
 public:
  // Makes the directory if there is none, and the run's own place in it. Throws std::runtime_error with one
  // line, as the other members do, if a file or directory cannot be made or replaced.
  explicit RunDirectory(std::string directory);
  // Removes what was not published.
  ~RunDirectory();
  RunDirectory(const RunDirectory&) = delete;
  RunDirectory& operator=(const RunDirectory&) = delete;

  // Makes one of the files types, model_comp_graph, mcg.viz and permutations.
  void write(const std::string& name, const std::function<void(std::ostream&)>& fill);

  // Begins detection.log. The stream ends with this object. It writes in blocks although the detector flushes
  // every line of its hundreds of thousands. If there is more than 1 GiB, the rest is left out, and the last
  // line says so.
  std::ostream& open_log();

  // Puts the files made into the directory, in place of those of an earlier run, which are removed if this
  // run has made none of their name. To be called once.
  void publish();

 private:
  class File;

  std::unique_ptr<File> make_file(const std::string& name, std::int64_t max_size) const;
  void close_file(const std::string& name, File& file) const;
  void place(const std::string& name);
  void remove_old(const std::string& name);

  std::string directory_;
  std::string own_place_;
  std::unique_ptr<DirectoryLock> lock_of_own_place_;  // tells other runs that this one lives
  std::set<std::string> made_;
  std::unique_ptr<File> log_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_RUN_DIRECTORY_H

// An output file that is either whole or not there. Built on POSIX calls.

#ifndef SYMFOLD_DETECTOR_WHOLE_FILE_H
#define SYMFOLD_DETECTOR_WHOLE_FILE_H

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <string>

namespace symfold {

// Written beside its place under a name of its own, NAME.XXXXXX.partial with six letters or digits; commit()
// brings it to the disk and renames it to NAME. Without a commit nothing changes at NAME and what was written
// is removed. If NAME is a link, then the file that it leads to is replaced and the link stays. A new file
// has the mode that the umask leaves; a file that is replaced hands its mode on. Devices, pipes and the
// process's own open files (/dev/stdout) are written directly.
//
// While it lives a writer holds a lock (flock) on what it has written so far. The system releases it with the
// process, so the next writer of the same NAME removes what killed runs left behind and touches nothing that
// another writer holds. The last two of the six characters are a checksum, so that other files are not taken
// for leftovers.
//
// Threads: one object serves one thread. Any number of objects, also of the same NAME, work side by side: the
// last commit wins.
class WholeFile {
 public:
  explicit WholeFile(std::string name);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  // Appends bytes. Returns false after a failure, the first of which error() tells.
  bool write(const char* data, std::size_t size);

  // Brings the contents to the disk, still under the name of their own. To be called once, after the last
  // write, by writers of several files: what can run out of space has happened before the first file gets its
  // name. Returns false after a failure, of this call or an earlier one.
  bool finish();

  // Gives the file its name when its contents have reached the disk, by finish() if that was not called. To
  // be called once. Returns false as finish() does.
  bool commit();

  // True if what NAME leads to is written directly: then bytes arrive before the commit, and stay.
  bool is_direct() const { return target_.empty(); }

  // Empty, or "NAME: error: cannot be written: REASON".
  const std::string& error() const { return error_; }

 private:
  void open_beside();
  bool open_partial(mode_t mode);
  void remove_leftovers() const;
  void put(const char* data, std::size_t size);
  void flush();
  void sync_directory();
  void fail(int reason);
  void discard();

  std::string name_;
  std::string target_;   // `name_` with links followed; empty if written directly
  std::string partial_;  // what is written and not yet renamed; empty if there is no such file
  std::string error_;
  bool is_finished_ = false;
  int descriptor_ = -1;
  std::size_t used_ = 0;
  std::array<char, 16384> buffer_;
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_WHOLE_FILE_H

// What it takes to publish files in a directory as a set.

#ifndef SYMFOLD_HOST_DIRECTORY_LOCK_H
#define SYMFOLD_HOST_DIRECTORY_LOCK_H

#include <string>

namespace symfold {

// Holds the lock (flock) while it lives, and waits for it if another one holds it, also one of the same
// process. It holds between the processes of one machine.
class DirectoryLock {
 public:
  // Throws std::system_error if the directory cannot be opened or locked.
  explicit DirectoryLock(const std::string& directory);
  ~DirectoryLock();
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;

  // Brings the names in the directory to the disk. Throws std::system_error if that fails; a file system that
  // cannot do it does not count as a failure.
  void sync() const;

 private:
  int descriptor_;
};

// Brings the names in a directory to the disk. Throws as DirectoryLock does.
void sync_directory(const std::string& directory);

}  // namespace symfold

#endif  // SYMFOLD_HOST_DIRECTORY_LOCK_H

#include "host/pictures/graphviz.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "host/new_file.h"

namespace symfold {
namespace {

// A file descriptor, closed by its destructor or before.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }
  void close() {
    if (number_ >= 0) ::close(std::exchange(number_, -1));
  }

 private:
  int number_;
};

[[noreturn]] void fail(const std::string& name, const std::string& reason) {
  throw std::runtime_error(name + ": error: " + reason);
}

// The program's end of the pipe becomes its standard output. Returns -1 if the program is not installed.
pid_t start_dot(const Descriptor& input, const Descriptor& output) {
  posix_spawn_file_actions_t actions;
  if (posix_spawn_file_actions_init(&actions) != 0) throw std::bad_alloc();
  if (posix_spawn_file_actions_adddup2(&actions, input.number(), STDIN_FILENO) != 0 ||
      posix_spawn_file_actions_adddup2(&actions, output.number(), STDOUT_FILENO) != 0) {
    posix_spawn_file_actions_destroy(&actions);
    throw std::bad_alloc();
  }
  std::array<std::string, 3> words = {"dot", "-q", "-Tsvg"};
  std::array<char*, 4> arguments = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  pid_t process = -1;
  const int error = posix_spawnp(&process, words[0].c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == ENOMEM) throw std::bad_alloc();
  return error == 0 ? process : -1;
}

void copy_all(const Descriptor& from, NewFile& to) {
  std::array<char, 1 << 16> block{};
  while (true) {
    const ssize_t count = ::read(from.number(), block.data(), block.size());
    if (count == 0 || (count < 0 && errno != EINTR)) return;
    if (count > 0) to.append(std::string_view(block.data(), static_cast<std::size_t>(count)));
  }
}

int wait_for(pid_t process) {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace

bool draw_svg(const std::string& dot_name, const std::string& svg_name) {
  const Descriptor input(::open(dot_name.c_str(), O_RDONLY | O_CLOEXEC));
  if (input.number() < 0) fail(dot_name, std::string("cannot be read: ") + std::strerror(errno));
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0)
    fail(svg_name, std::string("cannot be written: ") + std::strerror(errno));
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  NewFile picture(svg_name);
  const pid_t process = start_dot(input, writing);
  if (process < 0) return false;
  writing.close();
  copy_all(reading, picture);
  const int status = wait_for(process);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) fail(svg_name, "Graphviz's program dot failed");
  picture.commit();
  return true;
}

}  // namespace symfold

// A libFuzzer target: the model reader must keep its contract for any bytes.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/reader_contract.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const symfold::Reading reading =
      symfold::read_by_contract(std::string(reinterpret_cast<const char*>(data), size));
  if (reading.breach.empty()) return 0;
  std::fprintf(stderr, "the reader made %s\n", reading.breach.c_str());
  std::abort();
}

#ifndef SYMFOLD_BENCH_EXAMPLE_FAMILY_H
#define SYMFOLD_BENCH_EXAMPLE_FAMILY_H

#include <string>
#include <vector>

#include "host/model/composed_model.h"

namespace symfold {

// An example of examples/ at some size: "wreath M=20 K=10".
struct Family {
  const char* name;
  std::vector<std::string> constants;

  std::string title() const;
};

ComposedModel read_example(const Family& family);

}  // namespace symfold

#endif  // SYMFOLD_BENCH_EXAMPLE_FAMILY_H

#include "detector/refusal.h"

#include <iostream>

namespace symfold {

void report_refusal(std::string_view message) { std::cerr << "symfold: " << message << std::endl; }

}  // namespace symfold

#ifndef SYMFOLD_DETECTOR_REFUSAL_H
#define SYMFOLD_DETECTOR_REFUSAL_H

#include <string_view>

namespace symfold {

// Reports input that cannot be right: one line on standard error, "symfold: " and the message.
void report_refusal(std::string_view message);

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_REFUSAL_H

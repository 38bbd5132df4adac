// From text to tree.

#ifndef SYMFOLD_HOST_LANGUAGE_PARSER_H
#define SYMFOLD_HOST_LANGUAGE_PARSER_H

#include "host/language/error_list.h"
#include "host/language/model_description.h"

namespace symfold {

// Parses the whole text. Every syntax error found is in the list; the tree is complete when there is none.
ModelDescription parse_model(std::shared_ptr<const SourceText> source, ErrorList& errors);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_PARSER_H

// The common shape of pattern and linetype files: "*NAME,description" and lines of numbers under it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Problems/Problem.h"

namespace host::hatching {

/// Walks the lines of a definition file: "*" lines go to `header` with name and description, others to `body`; empty
/// lines and those that start with ";" are passed over. Either may answer what is wrong with its line; that goes to
/// `problems` with the line's number.
void readDefinitionFile(std::string_view text,
                        const std::function<std::string(std::string_view name, std::string_view description)>& header,
                        const std::function<std::string(std::string_view line)>& body, std::vector<Problem>& problems);

/// Numbers separated by commas up to the end or a ";". "[...]" (texts and shapes in linetypes) is passed over. Nothing
/// when a field is not a finite number.
std::optional<std::vector<double>> parseNumbers(std::string_view line);

}  // namespace host::hatching

#pragma once

#include <memory>
#include <typeindex>
#include <utility>
#include <vector>

namespace host::database {

/// What other modules keep with a drawing: one value of each type, which ends with the drawing.
class Attachments {
 public:
  /// The value of the type, made when first asked for.
  template <class T>
  T& of() {
    const std::type_index type(typeid(T));
    for (const auto& [known, value] : values_) {
      if (known == type) return *static_cast<T*>(value.get());
    }
    values_.emplace_back(type, std::make_shared<T>());
    return *static_cast<T*>(values_.back().second.get());
  }

 private:
  std::vector<std::pair<std::type_index, std::shared_ptr<void>>> values_;
};

}  // namespace host::database

// Calling the reactors of a list.
#pragma once

#include <algorithm>
#include <array>
#include <vector>

namespace host::database {

/// Calls `message` with each reactor of the list. A reactor may take itself or others out of the list meanwhile; these
/// are not called any more then. Takes no memory for the few reactors that there ever are: they are called for objects
/// that are closed on the way out of a failure, and at ends, where nothing may fail.
template <class Reactor, class Message>
void tellEach(const std::vector<Reactor*>& reactors, const Message& message) {
  std::array<Reactor*, 16> few;
  std::vector<Reactor*> many;
  const bool areMany = reactors.size() > few.size();
  if (areMany) many = reactors;
  const std::size_t count = reactors.size();
  std::copy_n(reactors.begin(), areMany ? 0 : count, few.begin());
  for (std::size_t i = 0; i < count; ++i) {
    Reactor* const told = areMany ? many[i] : few[i];
    if (std::find(reactors.begin(), reactors.end(), told) != reactors.end()) message(*told);
  }
}

}  // namespace host::database

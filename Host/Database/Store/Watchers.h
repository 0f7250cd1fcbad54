// Those who want to hear what happens to a drawing's objects: the plug-ins' reactors and the summary of a command.
#pragma once

#include <algorithm>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Database/Reactors.h"

namespace host::database {

class Watchers {
 public:
  Watchers() = default;
  Watchers(const Watchers&) = delete;
  Watchers& operator=(const Watchers&) = delete;

  /// False when it is there already.
  bool add(AcDbDatabaseReactor* reactor) {
    if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end()) return false;
    reactors_.push_back(reactor);
    return true;
  }
  /// False when it is not there.
  bool remove(AcDbDatabaseReactor* reactor) {
    const auto found = std::find(reactors_.begin(), reactors_.end(), reactor);
    if (found == reactors_.end()) return false;
    reactors_.erase(found);
    return true;
  }
  bool hasReactors() const { return !reactors_.empty(); }
  /// Calls `message` with each reactor.
  template <class Message>
  void tellReactors(const Message& message) const {
    tellEach(reactors_, message);
  }
  void takeReactors(Watchers& other) { reactors_ = std::move(other.reactors_); }

  void setObserver(WorkObserver* observer) { observer_ = observer; }
  void working() const {
    if (observer_ != nullptr) observer_->working();
  }
  void used(const Slot& object) const {
    if (observer_ != nullptr) observer_->used(object);
  }
  void refused(const Slot& object, WorkObserver::Refusal what, std::string_view why) const {
    if (observer_ != nullptr) observer_->refused(object, what, why);
  }

 private:
  std::vector<AcDbDatabaseReactor*> reactors_;
  WorkObserver* observer_ = nullptr;
};

}  // namespace host::database

// Named groups of entities.
#pragma once

#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/Opened.h"

namespace OrvLib {

/// Makes groups named by a prefix and the smallest number from 0 on that is free ("Varjo0", "Varjo1" …). One maker
/// serves one command: it counts on from its last number, so many groups need no search from the beginning.
class NumberedGroups {
 public:
  /// A null database means the working one.
  explicit NumberedGroups(const ACHAR* prefix, AcDbDatabase* db = nullptr);

  /// A new, empty group in the drawing's group dictionary, open for write. Empty, as the command line then says, when
  /// the host refuses.
  Opened<AcDbGroup> make(const ACHAR* description);

 private:
  std::wstring prefix_;
  AcDbDatabase* db_;
  int next_ = 0;
};

/// False when the group is not open or, as the command line then says, a member cannot be appended. Members must not be
/// open for write.
bool appendToGroup(const Opened<AcDbGroup>& group, const AcDbObjectIdArray& members);
/// The same with a group that is not open; false also when it cannot be opened.
bool appendToGroup(AcDbObjectId group, const AcDbObjectIdArray& members);

}  // namespace OrvLib

#include "Database/DrawingDatabase.h"

namespace host::database {

EntityProperties entityProperties(const Slot& slot) {
  EntityProperties properties;
  bool inside = false;
  bool inGroup = false;
  bool sawLayer = false;
  Tag tag;
  for (TagCursor cursor = slot.tags(); cursor.next(tag);) {
    if (tag.code >= 1000) break;
    if (tag.code == 102) {
      inGroup = !tag.trimmed().empty() && tag.trimmed().front() == '{';
      continue;
    }
    if (inGroup) continue;
    if (tag.code == 100) {
      // Some writers put the common values behind the entity's own marker.
      if (inside && sawLayer) break;
      inside = inside || tag.trimmed() == "AcDbEntity";
      continue;
    }
    if (!inside) continue;
    sawLayer = sawLayer || tag.code == 8;
    switch (tag.code) {
      case 6:
        properties.linetype = tag.value;
        break;
      case 62:
        properties.color = static_cast<int>(tag.integer());
        break;
      case 420:
        properties.trueColor = tag.integer() & 0xFFFFFF;
        break;
      case 370:
        properties.lineweight = static_cast<int>(tag.integer());
        break;
      case 48:
        properties.linetypeScale = tag.real();
        break;
      case 60:
        properties.invisible = tag.integer() != 0;
        break;
      case 440:
        properties.transparency = tag.integer();
        break;
      default:
        break;
    }
  }
  return properties;
}

}  // namespace host::database

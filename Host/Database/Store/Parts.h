// The parts of a drawing database. Whoever works inside it takes the ones it needs: `db.parts().layers`.
#pragma once

#include <mutex>

#include "Database/Attachments.h"
#include "Database/DrawingDatabase.h"
#include "Database/Memory.h"
#include "Database/Store/Blocks.h"
#include "Database/Store/Dictionaries.h"
#include "Database/Store/DrawingLife.h"
#include "Database/Store/HandleTable.h"
#include "Database/Store/HeaderVariables.h"
#include "Database/Store/Journal.h"
#include "Database/Store/Names.h"
#include "Database/Store/OpenObjects.h"
#include "Database/Store/RecordEditor.h"
#include "Database/Store/SharedTags.h"
#include "Database/Store/Slots.h"
#include "Database/Store/SortTables.h"
#include "Database/Store/SourceFile.h"
#include "Database/Store/SymbolTables.h"
#include "Database/Store/Watchers.h"

namespace host::database {

struct DrawingDatabase::Parts {
  explicit Parts(DrawingDatabase& db)
      : layers(file.codec),
        slots(&db),
        tables(db),
        blocks(db),
        dictionaries(db),
        sortTables(db),
        journal(db),
        editor(db),
        objects(db) {}

  DrawingLife life;
  SourceFile file;
  Arena memory;
  Attachments attachments;
  // Names.
  TypeNames types;
  LayerNames layers;
  SharedTagsIndex sharedTags;
  // Slots.
  Slots slots;
  HandleTable handles;
  // Containers.
  HeaderVariables header;
  SymbolTables tables;
  Blocks blocks;
  Dictionaries dictionaries;
  SortTables sortTables;
  // Work.
  Journal journal;
  RecordEditor editor;
  OpenObjects objects;
  Watchers watchers;
  std::mutex spelling;  // held by the thread that writes unwritten tags out into `memory`

  /// To be called when a layer or a header variable has changed: what was looked up in them is looked up anew.
  void forgetDefaults() {
    sharedTags.forget();
    layers.forgetLocks();
  }
};

}  // namespace host::database

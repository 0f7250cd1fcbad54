// What panels have at hand.
#pragma once

#include "Window/Canvas/CanvasView.h"
#include "Window/Commands/MenuTable.h"
#include "Window/Frame/Conversation.h"
#include "Window/Frame/Engine.h"

namespace host::window {

/// Panels read the drawing only while the session waits, and change it only by commands.
struct PanelContext {
  Engine& engine;
  const CommandTables& tables;
  CanvasView& canvas;
  Conversation& talk;
  std::function<std::vector<OwnFact>(const database::Slot&)> ownFacts;  // empty: the program knows nothing more
};

}  // namespace host::window

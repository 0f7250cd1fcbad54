// Calling code of plug-ins.
#pragma once

#include <exception>
#include <new>
#include <string>

namespace host::editor {

class Session;

/// Reports that a plug-in's object threw; `reason` may be empty.
void reportThrown(Session& session, const void* object, const std::string& reason);

/// Calls code of a plug-in's object that must not end the host's own work. An exception is reported with the module;
/// std::bad_alloc passes, for the command runner knows what to do when memory ends.
template <class Call>
void callPlugIn(Session& session, const void* object, const Call& call) {
  try {
    call();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    reportThrown(session, object, error.what());
  } catch (...) {
    reportThrown(session, object, {});
  }
}

}  // namespace host::editor

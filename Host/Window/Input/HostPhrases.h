// The host's own prompts and messages in the window's language. What plug-ins say stays as it is.
#pragma once

#include <QString>

namespace host::window {

struct Phrase {
  QString text;            // in the window's language, or as it was said
  bool isRefusal = false;  // an answer or command was not taken
};

/// One line of the transcript, or a prompt. Leading line feeds stay.
Phrase hostPhrase(const QString& said);

}  // namespace host::window

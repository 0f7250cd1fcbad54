#include "Database/ReadDrawing.h"

namespace tests {

std::string binaryOf(std::string_view text, bool wideCodes) {
  std::string out("AutoCAD Binary DXF\r\n\x1a\0", 22);
  const auto number = [&](const void* value, std::size_t size) { out.append(static_cast<const char*>(value), size); };
  host::database::Tag tag;
  while (host::database::readTag(text, tag)) {
    const int code = tag.code;
    const auto wide = static_cast<std::int16_t>(code);
    if (wideCodes) {
      number(&wide, 2);
    } else if (code < 255) {
      out += static_cast<char>(code);
    } else {
      out += '\xff';
      number(&wide, 2);
    }
    const double real = tag.real();
    const std::int64_t integer = tag.integer();
    const bool isReal = (code >= 10 && code < 60) || (code >= 110 && code < 150) || (code >= 210 && code < 240) ||
                        (code >= 1010 && code < 1060);
    if (isReal) {
      number(&real, 8);
    } else if ((code >= 60 && code < 80) || (code >= 270 && code < 290) || code == 370 || code == 1070) {
      number(&integer, 2);
    } else if ((code >= 90 && code < 100) || code == 420 || code == 1071) {
      number(&integer, 4);
    } else if (code == 290) {
      number(&integer, 1);
    } else if (code == 310 || code == 1004) {
      out += static_cast<char>(tag.value.size() / 2);
      for (std::size_t i = 0; i < tag.value.size(); i += 2) {
        out += static_cast<char>(std::stoi(std::string(tag.value.substr(i, 2)), nullptr, 16));
      }
    } else {
      out += tag.value;
      out += '\0';
    }
  }
  return out;
}

std::string withoutComments(std::string text) {
  for (std::size_t at = text.find("999\n"); at != std::string::npos; at = text.find("999\n")) {
    text.erase(at, text.find('\n', at + 4) + 1 - at);
  }
  return text;
}

}  // namespace tests

// The text encoding of one drawing.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace host::text {

/// Turns the text values of one drawing into wide text and back: UTF-8 or a code page, \U+XXXX and \M+nXXXX
/// sequences, control characters as "^J" and a caret as "^ ". Cheap to copy.
class Codec {
 public:
  /// UTF-8, as in drawings from AC1021 on.
  Codec();
  /// A code page by the name drawings give it ("ANSI_1252", "ANSI_949", "DOS850" ...); an unknown name is ANSI_1252.
  static Codec forCodePage(std::string_view name);

  bool isUtf8() const { return converter_ == nullptr; }
  /// What cannot be decoded becomes U+FFFD.
  std::wstring decode(std::string_view bytes) const;
  /// The same into a text whose memory is used again.
  void decode(std::string_view bytes, std::wstring& text) const;
  /// Characters outside the code page become \U+XXXX; control characters and carets are escaped.
  std::string encode(std::wstring_view text) const;

 private:
  class Converter;
  std::shared_ptr<Converter> converter_;
};

}  // namespace host::text

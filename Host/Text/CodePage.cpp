#include "CodePage.h"

#include <iconv.h>

#include <map>
#include <mutex>

#include "Characters.h"

namespace host::text {
namespace {

/// An iconv descriptor that closes itself.
class Iconv {
 public:
  Iconv(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {}
  ~Iconv() {
    if (isOpen()) iconv_close(descriptor_);
  }
  Iconv(const Iconv&) = delete;
  Iconv& operator=(const Iconv&) = delete;

  // iconv_open answers an invalid pointer by definition.
  bool isOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }  // NOLINT

  /// Converts all of `input` on its own; the number of bytes written, 0 when any of it has no meaning.
  std::size_t convert(char* input, std::size_t inputSize, char* output, std::size_t outputSize) const {
    const std::size_t room = outputSize;
    iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(descriptor_, &input, &inputSize, &output, &outputSize) == static_cast<std::size_t>(-1)) return 0;
    // Vietnamese and Hebrew pages hold a letter back in case an accent follows.
    if (iconv(descriptor_, nullptr, nullptr, &output, &outputSize) == static_cast<std::size_t>(-1)) return 0;
    return room - outputSize;
  }

 private:
  iconv_t descriptor_;
};

/// The one BMP character that these bytes stand for, 0 when there is none.
char16_t decodeOne(const Iconv& decoder, char* bytes, std::size_t size) {
  unsigned char out[16];
  const std::size_t written = decoder.convert(bytes, size, reinterpret_cast<char*>(out), sizeof out);
  return written == 2 ? static_cast<char16_t>(out[0] << 8 | out[1]) : u'\0';
}

}  // namespace

std::shared_ptr<const CodePage> CodePage::get(const std::string& iconvName) {
  static std::mutex mutex;
  static std::map<std::string, std::shared_ptr<const CodePage>> pages;
  const std::lock_guard lock(mutex);
  std::shared_ptr<const CodePage>& page = pages[iconvName];
  if (!page) page = std::make_shared<const CodePage>(iconvName);
  return page;
}

CodePage::CodePage(const std::string& iconvName) : codes_(0x10000) {
  const Iconv decoder("UTF-16BE", iconvName.c_str());
  const Iconv encoder(iconvName.c_str(), "UTF-16BE");
  // ASCII is ASCII in every page: drawings' own syntax needs the backslash that some tables show as a currency sign.
  for (unsigned byte = 1; byte < 0x80; ++byte) singles_[byte] = static_cast<char16_t>(byte);
  if (!decoder.isOpen() || !encoder.isOpen()) {
    for (unsigned byte = 0x80; byte < 0x100; ++byte) singles_[byte] = static_cast<char16_t>(byte);
  }

  for (unsigned lead = 0x80; lead < 0x100 && decoder.isOpen(); ++lead) {
    char bytes[2] = {static_cast<char>(lead), 0};
    singles_[lead] = decodeOne(decoder, bytes, 1);
    if (singles_[lead] != 0) continue;
    for (unsigned trail = 0x30; trail < 0x100; ++trail) {
      bytes[1] = static_cast<char>(trail);
      const char16_t character = decodeOne(decoder, bytes, 2);
      if (character == 0) continue;
      if (pairs_.empty()) pairs_.resize(0x8000);
      pairs_[(lead - 0x80) * 0x100 + trail] = character;
    }
  }
  // Bytes 80..9F without a meaning are kept as control characters, as Windows does, so that they survive.
  for (unsigned byte = 0x80; byte < 0xA0 && pairs_.empty(); ++byte)
    if (singles_[byte] == 0) singles_[byte] = static_cast<char16_t>(byte);

  for (unsigned byte = 1; byte < 0x100; ++byte)
    if (singles_[byte] != 0) addReverse(singles_[byte], static_cast<std::uint16_t>(byte));
  for (std::size_t i = 0; i < pairs_.size(); ++i) {
    const char16_t character = pairs_[i];
    if (character == 0) continue;
    if (codes_[character] == 0) {
      addReverse(character, static_cast<std::uint16_t>(0x8000 + i));
      continue;
    }
    // Some characters stand twice in a page; the encoder knows which place is the customary one.
    char wide[2] = {static_cast<char>(character >> 8), static_cast<char>(character & 0xFF)};
    unsigned char out[16];
    if (encoder.convert(wide, 2, reinterpret_cast<char*>(out), sizeof out) == 2 && out[0] >= 0x80)
      codes_[character] = static_cast<std::uint16_t>(out[0] << 8 | out[1]);
  }
}

void CodePage::addReverse(char16_t character, std::uint16_t code) {
  if (codes_[character] == 0) codes_[character] = code;
}

char32_t CodePage::next(std::string_view bytes, std::size_t& position) const {
  const auto lead = static_cast<unsigned char>(bytes[position++]);
  if (!isLead(lead)) return singles_[lead];
  if (pairs_.empty() || position == bytes.size()) return kReplacement;
  const auto trail = static_cast<unsigned char>(bytes[position]);
  const char16_t character = pairs_[static_cast<std::size_t>(lead - 0x80) * 0x100 + trail];
  if (character != 0 || trail >= 0x80) ++position;
  return character != 0 ? character : kReplacement;
}

bool CodePage::append(std::string& out, char32_t codePoint) const {
  const std::uint16_t code = codePoint < codes_.size() ? codes_[codePoint] : 0;
  if (code == 0) return false;
  if (code > 0xFF) out += static_cast<char>(code >> 8);
  out += static_cast<char>(code & 0xFF);
  return true;
}

}  // namespace host::text

#include "Platform/PlainNumbers.h"

#include <clocale>

namespace host::platform {

PlainNumbers::PlainNumbers() {
  static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
  previous_ = ::uselocale(plain);
}

PlainNumbers::~PlainNumbers() { ::uselocale(static_cast<locale_t>(previous_)); }

}  // namespace host::platform

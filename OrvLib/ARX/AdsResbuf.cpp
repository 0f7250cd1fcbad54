#include "OrvLib/ARX/AdsResbuf.h"

#include "OrvLib/ARX/Failures.h"

namespace OrvLib {

AdsResbuf& AdsResbuf::operator=(AdsResbuf&& other) noexcept {
  if (this != &other) {
    acutRelRb(first_);
    first_ = std::exchange(other.first_, nullptr);
    last_ = std::exchange(other.last_, nullptr);
  }
  return *this;
}

resbuf* AdsResbuf::appendItem(short code) {
  resbuf* const item = acutNewRb(code);
  if (item == nullptr) throw OrvExpAcad(L"ads_newrb() failed.");
  if (first_ == nullptr) {
    first_ = item;
  } else {
    if (last_ == nullptr) {  // a chain taken over
      for (last_ = first_; last_->rbnext != nullptr;) last_ = last_->rbnext;
    }
    last_->rbnext = item;
  }
  return last_ = item;
}

void AdsResbuf::append(short code, const ACHAR* text) {
  resbuf* const item = appendItem(code);
  if (acutNewString(text, item->resval.rstring) != Acad::eOk) throw OrvExpAcad(L"ads_newrb() failed.");
}

}  // namespace OrvLib

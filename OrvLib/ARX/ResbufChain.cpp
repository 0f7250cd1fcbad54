#include "OrvLib/ARX/ResbufChain.h"

#include "OrvLib/ARX/Failures.h"

namespace OrvLib {

ResbufChain& ResbufChain::operator=(ResbufChain&& other) noexcept {
  if (this != &other) {
    acutRelRb(first_);
    first_ = std::exchange(other.first_, nullptr);
    last_ = std::exchange(other.last_, nullptr);
  }
  return *this;
}

resbuf* ResbufChain::appendItem(short code) {
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

void ResbufChain::append(short code, const ACHAR* text) {
  resbuf* const item = appendItem(code);
  if (acutNewString(text, item->resval.rstring) != Acad::eOk) throw OrvExpAcad(L"ads_newrb() failed.");
}

}  // namespace OrvLib

#include "OrvLib/ARX/AdsResbuf.h"

#include "OrvLib/Reports/Failures.h"

namespace OrvLib {

AdsResbuf::AdsResbuf(const DataItems& items) {
  AdsResbuf chain;  // released when an item cannot be had
  for (const DataItem& item : items) chain.append(item);
  *this = std::move(chain);
}

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

void AdsResbuf::append(const DataItem& item) {
  if (item.text() != nullptr) return append(item.code, *item.text());
  resbuf* const buffer = appendItem(item.code);
  if (const auto* const real = std::get_if<double>(&item.value)) buffer->resval.rreal = *real;
  if (const auto* const small = std::get_if<std::int16_t>(&item.value)) buffer->resval.rint = *small;
  if (const auto* const large = std::get_if<std::int32_t>(&item.value)) buffer->resval.rlong = *large;
}

}  // namespace OrvLib

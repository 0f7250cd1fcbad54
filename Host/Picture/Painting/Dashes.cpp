#include "Picture/Painting/Dashes.h"

#include <cmath>
#include <numeric>

namespace host::picture {

using geometry::Box;
using geometry::Point;

namespace {

/// The pattern as stretches along one line: the fitted ends, and the rounds between them.
class FittedPattern {
 public:
  FittedPattern(const std::vector<double>& pattern, double round, double length) : pattern_(pattern) {
    const double first = std::max(pattern[0], 0.0);
    const double rounds = std::floor((length - first) / round);
    unbroken_ = !(rounds >= 1);
    left_ = (length - rounds * round + first) / 2;
    // A dot cannot be lengthened to fill the ends: they stay empty, the same at both.
    if (pattern.front() == 0 && pattern.back() < 0) {
      at_ = pattern.size() - 1;
      isStart_ = false;
    }
  }
  bool isUnbroken() const { return unbroken_; }
  double length() const { return left_; }
  std::size_t element() const { return at_; }
  bool isDash() const { return isStart_ || pattern_[at_] >= 0; }
  bool isDot() const { return !isStart_ && pattern_[at_] == 0; }
  void use(double length) { left_ -= length; }
  void advance() {
    isStart_ = false;
    at_ = (at_ + 1) % pattern_.size();
    left_ = std::abs(pattern_[at_]);
  }
  /// Moves on by whole rounds and what is left of them, without giving anything.
  void skip(double length, double round) {
    if (length > left_ + round) {
      const double more = std::floor((length - left_) / round - 1);
      if (more > 0) length -= more * round;
    }
    while (length >= left_) {
      length -= left_;
      advance();
    }
    left_ -= length;
  }

 private:
  const std::vector<double>& pattern_;
  std::size_t at_ = 0;
  double left_ = 0;
  bool isStart_ = true;
  bool unbroken_ = false;
};

}  // namespace

void drawDashes(const std::vector<Point>& given, bool closed, const std::vector<double>& pattern, const Box& clip,
                std::size_t limit, const std::function<void(const std::vector<Point>&)>& give,
                const std::function<void(std::size_t, Point, Point)>& mark) {
  std::vector<Point> line = given;
  if (closed && !line.empty()) line.push_back(line.front());
  if (line.size() < 2) return;
  double total = 0;
  for (std::size_t i = 0; i + 1 < line.size(); ++i) total += distance(line[i], line[i + 1]);
  const double round =
      std::accumulate(pattern.begin(), pattern.end(), 0.0, [](double s, double d) { return s + std::abs(d); });
  if (pattern.size() < 2 || !(round > 0) || !(total > 0) || !std::isfinite(total / round)) {
    give(line);
    return;
  }
  FittedPattern stretch(pattern, round, total);
  if (stretch.isUnbroken()) {
    give(line);
    return;
  }
  std::size_t given_ = 0;
  std::vector<Point> dash;
  const auto finish = [&] {
    if (!dash.empty()) {
      give(dash);
      ++given_;
    }
    dash.clear();
  };
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    const Point a = line[i], b = line[i + 1];
    const double whole = distance(a, b);
    if (whole == 0) continue;
    Box box;
    box.add(a);
    box.add(b);
    if (!box.intersects(clip)) {
      finish();
      stretch.skip(whole, round);
      continue;
    }
    const auto at = [&](double s) { return Point{a.x + (b.x - a.x) * (s / whole), a.y + (b.y - a.y) * (s / whole)}; };
    double s = 0;
    while (s < whole) {
      if (given_ >= limit) {
        finish();
        std::vector<Point> rest{at(s)};
        rest.insert(rest.end(), line.begin() + static_cast<std::ptrdiff_t>(i) + 1, line.end());
        give(rest);
        return;
      }
      const double step = std::min(stretch.length(), whole - s);
      if (stretch.isDash()) {
        if (dash.empty()) dash.push_back(at(s));
        if (!stretch.isDot() && step > 0) dash.push_back(s + step >= whole ? b : at(s + step));
      }
      s += step;
      stretch.use(step);
      // A piece may end within rounding of a stretch's end.
      if (stretch.length() <= round * 1e-12) {
        finish();
        if (mark) mark(stretch.element(), at(s), {(b.x - a.x) / whole, (b.y - a.y) / whole});
        stretch.advance();
      }
    }
  }
  finish();
}

}  // namespace host::picture

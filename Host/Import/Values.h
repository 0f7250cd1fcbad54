// Values of map data as they are written: heights with units, floors in Roman numerals.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::import {

/// Attributes of a feature by name; empty text for one that is missing.
using Attributes = std::function<std::string(std::string_view name)>;

/// "12 m", "3,5", "12;14" (the first), "40'"; nothing for what begins with no number, or is not finite.
std::optional<double> parseMeasure(std::string_view text);

/// Floors as registers write them: "4", "3.5", "IV", "II-IV" and "2-4" (to the end of the range), "1 1/2", "I u 2/3"
/// (a part counts as a floor). Nothing when it is none of these, or less than nothing.
std::optional<double> parseFloors(std::string_view text);

/// The first of several ways to a value that leads to a number: "height", "height - roof:height", "lanes * 3.25",
/// "volume / area", "6".
std::optional<double> valueOf(const std::vector<std::string>& ways, const Attributes& attributes);

/// Terms that must all hold, divided by blanks: "building=*", "highway=primary,secondary", "location!=underground",
/// "width>3". A value matches patterns with * and ?, without regard to case.
bool holds(std::string_view condition, const Attributes& attributes);

/// As a user would write it: "12", "0.5".
std::string shown(double value);
/// The text with the values in place of their names: "{height}". Names without a value stay.
std::string filled(std::string text, const std::map<std::string, std::string>& values);

}  // namespace host::import

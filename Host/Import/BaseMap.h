// Base maps of Finnish municipalities in KuntaGML, made fit for GDAL's reader.
#pragma once

#include <string>
#include <string_view>

namespace host::import {

/// Whether a file's beginning is that of a KuntaGML base map.
bool isBaseMap(std::string_view beginning);

/// Things of a base map have several places (Sijainti): their area, edge or centre line, and a point for their texts.
/// The reader keeps the last of them. In the text that comes back each has the best one only: area, centre line, edge,
/// point; several of the best kind stay.
std::string withOnePlaceEach(std::string_view gml);

}  // namespace host::import

// Where rain was measured: what STATION and INSTRUMENT say of an instrument.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "database/access/plot_db.h"

namespace hyetex {

struct RainSite {
  std::string Instrument;  ///< the code as INSTRUMENT spells it, or as it was asked for
  std::string StationCode, Station, Agency, InstrumentType;
  std::optional<double> Latitude = {}, Longitude = {};  ///< degrees, from the UTM place
  std::optional<double> Altitude = {};                  ///< m
  std::optional<double> HeightAboveGround = {};         ///< of the instrument, as it is stored
  std::vector<std::string> Notes;                       ///< what is missing or cannot be true
};
/// Fails where the database does; what it does not say stays empty, with a note.
DbResult<RainSite> ReadRainSite(HyetexPlotDB& database, const std::string& instrument);

struct GeoPlace {
  double Latitude = 0, Longitude = 0;  ///< degrees
};
/// Of a place of UTM on the ellipsoid WGS 84; a zone below 0 is south of the equator. Nothing for what is no
/// place: zones beyond 60, eastings and northings that no zone has.
std::optional<GeoPlace> PlaceOfUtm(double easting, double northing, int zone);

}  // namespace hyetex

#include "rain/rain_site.h"

#include <cmath>
#include <numbers>

#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

// The row of a table whose code is this one; nothing where there is none.
class FoundRow {
 public:
  static DbResult<FoundRow> Find(HyetexPlotDB& database, const char* table, const char* codeColumn,
                                 const std::string& code) {
    FoundRow found;
    const auto known = database.DatabaseConnection.FindTable(table);
    if (!known) return tl::unexpected(known.error());
    if (!*known || code.empty()) return found;
    auto rows = Recordset::Open(database.DatabaseConnection, table,
                                {.Where = {{codeColumn, Compare::EqualIgnoringCase, code}}});
    if (!rows) return tl::unexpected(rows.error());
    found.rows_ = *std::move(rows);
    return found;
  }
  bool IsThere() const { return !rows_.Eof(); }
  std::string Text(const char* column) {
    const auto value = Value(column);
    return value ? std::string(Trim(ShownText(TextOf(*value)))) : "";
  }
  std::optional<double> Number(const char* column) {
    const auto value = Value(column);
    if (!value || IsNull(*value)) return std::nullopt;
    return NumberOf(*value);
  }

 private:
  std::optional<DbValue> Value(const char* column) {
    if (rows_.Eof() || !rows_.HasField(column)) return std::nullopt;
    auto value = rows_.Value(column);
    if (!value) return std::nullopt;
    return *std::move(value);
  }
  Recordset rows_;
};

}  // namespace

DbResult<RainSite> ReadRainSite(HyetexPlotDB& database, const std::string& instrument) {
  if (!database.DatabaseConnection.IsOpen())
    if (const auto opened = database.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  RainSite site;
  site.Instrument = instrument;
  {
    auto row = FoundRow::Find(database, table_name::Instrument, column::InstrumentCode, instrument);
    if (!row) return tl::unexpected(row.error());
    if (row->IsThere()) {
      site.Instrument = row->Text(column::InstrumentCode);
      site.StationCode = row->Text("station_code_id");
      site.Station = row->Text(column::Station);
      site.InstrumentType = row->Text("instrument_type");
      site.HeightAboveGround = row->Number("height_above_ground");
    } else {
      site.Notes.push_back("INSTRUMENT does not have " + instrument);
    }
  }
  auto row = FoundRow::Find(database, table_name::Station, "station_code_id", site.StationCode);
  if (!row) return tl::unexpected(row.error());
  if (!row->IsThere()) {
    site.Notes.push_back("STATION does not have the station of " + instrument + ": its place is not known");
    return site;
  }
  if (const std::string name = row->Text(column::Station); !name.empty()) site.Station = name;
  site.Agency = row->Text("owner_agency");
  site.Altitude = row->Number("altitude");
  const auto easting = row->Number("utme"), northing = row->Number("utmn"), zone = row->Number("utm_zone");
  const auto place = easting && northing && zone
                         ? PlaceOfUtm(*easting, *northing, static_cast<int>(std::lround(*zone)))
                         : std::nullopt;
  if (place) {
    site.Latitude = place->Latitude;
    site.Longitude = place->Longitude;
  } else {
    site.Notes.push_back("STATION has no place in UTM that can be true for " + site.Station);
  }
  if (!site.Altitude) site.Notes.push_back("STATION has no altitude for " + site.Station);
  return site;
}

// Krueger's series to the third power of the third flattening: exact to less than a millimetre in a zone.
std::optional<GeoPlace> PlaceOfUtm(double easting, double northing, int zone) {
  constexpr double radius = 6378137, flattening = 1 / 298.257223563, scale = 0.9996;
  constexpr double falseEasting = 500'000, falseNorthing = 10'000'000;
  constexpr int lastZone = 60;
  const bool isSouth = zone < 0;
  const int number = isSouth ? -zone : zone;
  if (number < 1 || number > lastZone || !(easting >= 100'000 && easting < 1'000'000) ||
      !(northing >= 0 && northing <= falseNorthing))
    return std::nullopt;
  const double n = flattening / (2 - flattening), n2 = n * n, n3 = n2 * n;
  const double around = radius / (1 + n) * (1 + n2 / 4 + n2 * n2 / 64);
  const double beta[] = {n / 2 - 2 * n2 / 3 + 37 * n3 / 96, n2 / 48 + n3 / 15, 17 * n3 / 480};
  const double delta[] = {2 * n - 2 * n2 / 3 - 2 * n3, 7 * n2 / 3 - 8 * n3 / 5, 56 * n3 / 15};
  const double xi = (northing - (isSouth ? falseNorthing : 0)) / (scale * around);
  const double eta = (easting - falseEasting) / (scale * around);
  double xi0 = xi, eta0 = eta;
  for (int j = 1; j <= 3; ++j) {
    xi0 -= beta[j - 1] * std::sin(2 * j * xi) * std::cosh(2 * j * eta);
    eta0 -= beta[j - 1] * std::cos(2 * j * xi) * std::sinh(2 * j * eta);
  }
  const double chi = std::asin(std::sin(xi0) / std::cosh(eta0));
  double latitude = chi;
  for (int j = 1; j <= 3; ++j) latitude += delta[j - 1] * std::sin(2 * j * chi);
  constexpr double degrees = 180 / std::numbers::pi;
  return GeoPlace{latitude * degrees,
                  number * 6 - 183 + std::atan2(std::sinh(eta0), std::cos(xi0)) * degrees};
}

}  // namespace hyetex

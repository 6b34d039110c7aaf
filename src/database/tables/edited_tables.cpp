#include "database/tables/edited_tables.h"

#include "database/access/names.h"
#include "database/access/schema.h"

namespace hyetex {
namespace {

constexpr EditedTable LocalBasins{.Entry = "LUT LOCAL BASIN",
                                  .Window = "frmEdit_LUT_LocalBasin",
                                  .Title = "Edit Local Basins",
                                  .Table = "LUT_LOCAL_BASIN",
                                  .Columns = "local_basin local_basin_code",
                                  .FindBy = "local_basin"};

constexpr EditedTable Tables[] = {
    {.Entry = "STATION",
     .Window = "frmEditStation",
     .Title = "Edit Station Records",
     .Table = "STATION",
     .Columns = "",
     .FindBy = "station_code_id"},
    {.Entry = "INSTRUMENT",
     .Window = "frmEditInstrument",
     .Title = "Edit Instrument Records",
     .Table = "INSTRUMENT",
     .Columns =
         "instrument_code_id instrument_type instrument_id manufacturer model_number station "
         "station_code_id date_start_instrument date_stop_instrument height_above_ground purchase_year "
         "orifice_diameter instrument_accuracy systematic_errors minimum_time_unit minimum_depth_unit "
         "comments",
     .FindBy = "instrument_code_id"},
    {.Entry = "MANUAL GAGE",
     .Window = "frmManualGageMD",
     .Title = "Edit Manual Gage Records",
     .Table = "MANUAL_GAGE",
     .Columns = "start_date end_date depth method_to_obtain data_Reliability_code comments",
     .FindBy = "instrument_code_id",
     .ShowsGrid = true,
     .Master = "INSTRUMENT",
     .MasterColumn = "instrument_code_id"},
    LocalBasins,
    {.Entry = "INSTRUMENT VISIT",
     .Window = "frmEditInstrument_Visit",
     .Title = "Edit Instrument Visit Records",
     .Table = "INSTRUMENT_VISIT",
     .Columns =
         "instrument_code_id visit_date purpose_of_visit outcome_of_visit description_of_visit station "
         "comments",
     .OrderBy = "instrument_code_id",
     .FindBy = "instrument_code_id"},
    {.Entry = "AREA DESCRIPTION",
     .Window = "frmEdit_AreaDescription",
     .Title = "Edit Area Description Records",
     .Table = "AREA_DESCRIPTION",
     .Columns = "area_description_id station_code_id date_of_area_description area_description image_file "
                "station comments",
     .FindBy = "station_code_id"},
    {.Entry = "DATES OF DATA",
     .Window = "frmEdit_DatesOfData",
     .Title = "Edit Dates of Data Records",
     .Table = "DATES_OF_DATA",
     .Columns = "instrument_code_id date_data_begin date_data_end station comments",
     .FindBy = "instrument_code_id"},
    {.Entry = "LUT GOVERNORATE",
     .Window = "frmEdit_LUT_GOVERNORATE",
     .Title = "Edit Governorates",
     .Table = "LUT_GOVERNORATE",
     .Columns = "governorate governorate_code",
     .FindBy = "governorate"},
    LocalBasins,
    {.Entry = "LUT LOCALITy",
     .Window = "frmEdit_LUT_Locality",
     .Title = "Edit Localities",
     .Table = "LUT_LOCALITy",
     .Columns = "locality locality_code",
     .FindBy = "locality"},
    {.Entry = "LUT REGION",
     .Window = "frmEdit_LUT_Region",
     .Title = "Edit Regions",
     .Table = "LUT_REGION",
     .Columns = "region region_code",
     .FindBy = "region"},
    {.Entry = "LUT REGIONAL BASIN",
     .Window = "frmEdit_LUT_RegionalBasin",
     .Title = "Edit Regional Basins",
     .Table = "LUT_REGIONAL_BASIN",
     .Columns = "regional_basin regional_basin_code",
     .FindBy = "regional_basin"},
    {.Entry = "JORDAN CHARTS By HAND",
     .Window = "frmEdit_JordanCharts",
     .Title = "Edit Jordan Charts By Hand",
     .Table = "JORDAN_CHARTS_By_HAND",
     .Columns = "",
     .FindBy = "instrument_code_id",
     .ShowsGrid = true},
};

}  // namespace

std::span<const EditedTable> EditedTables() { return Tables; }

std::vector<std::string> ColumnsOf(const EditedTable& table) {
  std::vector<std::string> columns;
  std::string_view names = table.Columns;
  while (!names.empty()) {
    const std::size_t end = std::min(names.find(' '), names.size());
    if (end > 0) columns.emplace_back(names.substr(0, end));
    names.remove_prefix(std::min(end + 1, names.size()));
  }
  if (const SchemaTable* schema = FindSchemaTable(table.Table); schema != nullptr && columns.empty())
    for (const SchemaColumn& column : schema->Columns) columns.emplace_back(column.Name);
  return columns;
}

}  // namespace hyetex

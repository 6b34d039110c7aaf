// Which part of a scan lies under a view of the desk, and which part of the tablet the scan takes.
#pragma once

#include "digitizing/desk_layout.h"
#include "digitizing/scan_placement.h"
#include "scan/scan_image.h"

namespace hyetex {

/// The part of the image under a view whose pixels are `unitsPerPixel` screen units wide and high.
ScanWindow ScanWindowOf(const DeskLayout& layout, const ScanPlacement& placement, double unitsPerPixel);

/// What an image of width x height pixels takes of the tablet, turned as it is.
TabletArea AreaOf(const ScanPlacement& placement, int width, int height);

}  // namespace hyetex

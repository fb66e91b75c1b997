// The model's date-format and time-format enumerations: how much of a date, respectively of
// a time of day, a data item shows. Each step shows more than the one before, in the way the
// platform's date-formatter styles do, and maps to the style of the same name
// (DateFormatter::dateFormatterStyleFromVNDataDateFormat / ...TimeFormat):
//
//   none    the part is not shown                         ("")
//   short   numeric                                       (3/1/20, 10:20 AM)
//   medium  abbreviated month names, seconds              (Mar 1, 2020, 10:20:30 AM)
//   long    full month names, the zone's short name       (March 1, 2020, 10:20:30 AM GMT)
//   full    with the weekday, the zone's full name        (Sunday, March 1, 2020, ... GMT)
//
// (The examples are en_US; every locale has its own forms.) The raw values are stored in the
// model and never change.
#pragma once

#include <cstdint>

namespace vn {

enum VNDataDateFormat : std::uint8_t {
    VNDataDateFormatNone = 0,
    VNDataDateFormatShort = 1,
    VNDataDateFormatMedium = 2,
    VNDataDateFormatLong = 3,
    VNDataDateFormatFull = 4,
};

enum VNDataTimeFormat : std::uint8_t {
    VNDataTimeFormatNone = 0,
    VNDataTimeFormatShort = 1,
    VNDataTimeFormatMedium = 2,
    VNDataTimeFormatLong = 3,
    VNDataTimeFormatFull = 4,
};

}  // namespace vn

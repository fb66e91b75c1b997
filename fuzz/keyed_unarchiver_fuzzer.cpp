// libFuzzer target: any bytes unarchive to a value or to an error, never both or neither, and
// a value that unarchives archives again to bytes that unarchive to the same value.
#include <cstddef>
#include <cstdint>
#include <optional>

#include "FuzzInput.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"
#include "vn/values/JSON.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const vn::Data bytes(data, data + size);
    vn::ErrorPtr error;
    const std::optional<vn::Value> value = vn::KeyedUnarchiver::unarchivedValue(bytes, &error);
    vn_fuzz::check(value.has_value() == (error == nullptr), "a result and an error disagree");
    if (!value) return 0;
    const auto archived = vn::KeyedArchiver::archivedDataWithRootObject(*value);
    if (!archived) return 0;
    const auto again = vn::KeyedUnarchiver::unarchivedValue(*archived);
    vn_fuzz::check(again.has_value(), "an archive of an unarchived value that does not unarchive");
    vn_fuzz::check(vn::jsonString(*again) == vn::jsonString(*value),
                   "an archive that does not read back as the same value");
    return 0;
}

// The MIME type of a file from its path extension.
//
// Lookup order:
// 1. an empty extension: no type;
// 2. the system's type database, /etc/mime.types (Debian's media-types package), which stands
//    for the platform's uniform type database here; extensions are compared there without
//    regard to ASCII case; a type found there with its MIME type is the answer;
// 3. types that the database of this host knows only by their uniform type identifier: the
//    extensions "pages", "key", "numbers", "aifc", "caf" and "mp2" carry the identifiers
//    "com.apple.iwork.pages.pages", "com.apple.iwork.keynote.key",
//    "com.apple.iwork.numbers.numbers", "public.aifc-audio", "com.apple.coreaudio-format" and
//    "public.mp2"; when step 2 has no MIME type for them, the identifier override table maps
//    those identifiers to "application/x-iwork-pages-sffpages",
//    "application/x-iwork-keynote-sffkey", "application/x-iwork-numbers-sffnumbers",
//    "audio/x-aiff", "audio/x-caf" and "video/mpeg";
// 4. the extension itself, compared exactly, in the extension override table: "swf"
//    "application/x-shockwave-flash"; "ogg", "oga", "spx" "audio/vorbis"; "webm" "video/webm";
//    "ogv" "video/ogg"; "divx" "video/x-divx"; "sif" "application/x-stuffit" (that key, not
//    "sit", on purpose); "rar" "application/x-rar-compressed"; "dmg"
//    "application/x-apple-diskimage".
// The database is read once, on first use. Safe from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vn {

inline constexpr std::string_view mimeTypeApplicationOctetStream = "application/octet-stream";

// The MIME type for the extension ("png", not ".png"); absent when no type is known.
std::optional<std::string> mimeType(std::string_view pathExtension);
[[nodiscard]] std::optional<std::string> mimeTypeFromPathExtension(std::string_view pathExtension);
// The same, with "application/octet-stream" when no type is known.
std::string mimeTypeForPathExtension(std::string_view pathExtension);

// Reads the type database from another file from now on (for hosts whose database lives
// elsewhere, and for tests). A file that cannot be read means an empty database.
void setSystemMimeTypesPath(std::string_view path);

}  // namespace vn

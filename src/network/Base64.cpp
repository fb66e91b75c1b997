#include "vn/network/Base64.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace vn {
namespace {

// OpenSSL's codec takes int lengths; working in chunks keeps any size within them. Both sizes
// are whole groups (three bytes, four characters).
constexpr std::size_t kEncodeChunkBytes = 3 * 16384;
constexpr std::size_t kDecodeChunkCharacters = 4 * 16384;

constexpr std::uint8_t kNotInAlphabet = 0xFF;

constexpr std::array<std::uint8_t, 256> alphabetValues() {
    std::array<std::uint8_t, 256> values{};
    values.fill(kNotInAlphabet);
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < alphabet.size(); ++i)
        values[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    return values;
}
constexpr std::array<std::uint8_t, 256> kAlphabetValues = alphabetValues();

std::uint8_t alphabetValue(char c) {
    return kAlphabetValues[static_cast<unsigned char>(c)];
}

// The number of "=" at the end of a canonical text; absent when the text is not one.
std::optional<std::size_t> canonicalPadding(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    const std::string_view body = text.substr(0, text.size() - padding);
    if (!std::all_of(body.begin(), body.end(),
                     [](char c) { return alphabetValue(c) != kNotInAlphabet; }))
        return std::nullopt;
    // The last character before the padding carries bits beyond the data: 4 of them with two
    // "=", 2 with one. They must be zero, or two texts would stand for the same bytes.
    if (padding > 0) {
        const std::uint8_t unusedBits = padding == 2 ? 0x0F : 0x03;
        if ((alphabetValue(body.back()) & unusedBits) != 0) return std::nullopt;
    }
    return padding;
}

}  // namespace

std::string base64EncodedString(std::span<const std::uint8_t> bytes) {
    // EVP_EncodeBlock writes a terminating NUL after each chunk: room for it, then cut it off.
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    std::size_t written = 0;
    for (std::size_t offset = 0; offset < bytes.size(); offset += kEncodeChunkBytes) {
        const std::size_t length = std::min(kEncodeChunkBytes, bytes.size() - offset);
        written += static_cast<std::size_t>(
            EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data() + written),
                            bytes.data() + offset, static_cast<int>(length)));
    }
    text.resize(written);
    return text;
}

std::optional<Data> dataWithBase64EncodedString(std::string_view text) {
    const std::optional<std::size_t> padding = canonicalPadding(text);
    if (!padding) return std::nullopt;
    // The codec decodes the padding as zero bytes: room for them, then cut them off.
    Data data(text.size() / 4 * 3);
    std::size_t written = 0;
    for (std::size_t offset = 0; offset < text.size(); offset += kDecodeChunkCharacters) {
        const std::size_t length = std::min(kDecodeChunkCharacters, text.size() - offset);
        const int decoded = EVP_DecodeBlock(
            data.data() + written, reinterpret_cast<const unsigned char*>(text.data() + offset),
            static_cast<int>(length));
        if (decoded < 0) return std::nullopt;
        written += static_cast<std::size_t>(decoded);
    }
    data.resize(written - *padding);
    return data;
}

}  // namespace vn

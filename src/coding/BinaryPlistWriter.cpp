#include "coding/BinaryPlistWriter.h"

#include <bit>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "coding/PlistNode.h"
#include "platform/internal/Utf8.h"

namespace vn::coding_internal {
namespace {

// One object of the object table: a node, or a dictionary key (which libplist keeps as a
// separate kind of node, but the format stores as a string).
struct Entry {
    plist_t node = nullptr;
    std::string_view text;  // strings and keys
    bool isText = false;
    std::vector<std::uint64_t> references;  // arrays: items; dictionaries: keys, then values
};

std::size_t bytesFor(std::uint64_t value) {
    if (value <= 0xFF) return 1;
    if (value <= 0xFFFF) return 2;
    if (value <= 0xFFFFFFFF) return 4;
    return 8;
}

void appendBigEndian(Data& out, std::uint64_t value, std::size_t bytes) {
    for (std::size_t i = bytes; i-- > 0;)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

// Gives every object its index, depth first from the root; equal texts share one index. The
// walk recurses once per level of container nesting, which a keyed archive keeps to a handful
// (its values nest through UIDs, not through containers).
class Flattener {
  public:
    std::vector<Entry> entries;

    std::uint64_t add(plist_t node) {
        const plist_type type = plist_get_node_type(node);
        if (type == PLIST_STRING) {
            std::uint64_t length = 0;
            const char* text = plist_get_string_ptr(node, &length);
            return addText(std::string_view(text ? text : "", text ? length : 0));
        }
        const std::uint64_t index = entries.size();
        entries.push_back(Entry{node, {}, false, {}});
        if (type == PLIST_ARRAY) addArrayItems(node, index);
        if (type == PLIST_DICT) addDictionaryItems(node, index);
        return index;
    }

  private:
    std::unordered_map<std::string_view, std::uint64_t> texts_;  // views into nodes and keys_
    std::deque<std::string> keys_;  // the copies libplist's iterator hands out, never moved

    std::uint64_t addText(std::string_view text) {
        if (const auto found = texts_.find(text); found != texts_.end()) return found->second;
        const std::uint64_t index = entries.size();
        entries.push_back(Entry{nullptr, text, true, {}});
        texts_.emplace(text, index);
        return index;
    }

    void addArrayItems(plist_t array, std::uint64_t index) {
        for (plist_t item : arrayItems(array)) {
            const std::uint64_t reference = add(item);
            entries[index].references.push_back(reference);
        }
    }

    void addDictionaryItems(plist_t dictionary, std::uint64_t index) {
        std::vector<plist_t> values;
        std::vector<std::uint64_t> keyReferences;
        coding_internal::forEachDictionaryItem(dictionary, [&](std::string key, plist_t value) {
            keys_.push_back(std::move(key));
            keyReferences.push_back(addText(keys_.back()));
            values.push_back(value);
        });
        std::vector<std::uint64_t> references = std::move(keyReferences);
        for (plist_t value : values) references.push_back(add(value));
        entries[index].references = std::move(references);
    }
};

class Writer {
  public:
    Writer(const std::unordered_set<plist_t>& sixteenByteIntegers, std::size_t objectCount)
        : wide_(sixteenByteIntegers), referenceBytes_(bytesFor(objectCount)) {}

    Data out{'b', 'p', 'l', 'i', 's', 't', '0', '0'};

    bool write(const Entry& entry) {
        if (entry.isText) return writeText(entry.text);
        const plist_type type = plist_get_node_type(entry.node);
        switch (type) {
            case PLIST_BOOLEAN: {
                std::uint8_t value = 0;
                plist_get_bool_val(entry.node, &value);
                out.push_back(value ? 0x09 : 0x08);
                return true;
            }
            case PLIST_UINT: {
                std::uint64_t value = 0;
                plist_get_uint_val(entry.node, &value);
                if (wide_.count(entry.node)) {
                    out.push_back(0x14);
                    appendBigEndian(out, 0, 8);
                    appendBigEndian(out, value, 8);
                } else {
                    writeInteger(value);
                }
                return true;
            }
            case PLIST_REAL: {
                double value = 0;
                plist_get_real_val(entry.node, &value);
                out.push_back(0x23);
                appendBigEndian(out, std::bit_cast<std::uint64_t>(value), 8);
                return true;
            }
            case PLIST_DATA: {
                std::uint64_t length = 0;
                const char* bytes = plist_get_data_ptr(entry.node, &length);
                writeMarker(0x40, length);
                if (bytes) out.insert(out.end(), bytes, bytes + length);
                return true;
            }
            case PLIST_UID: {
                std::uint64_t value = 0;
                plist_get_uid_val(entry.node, &value);
                const std::size_t bytes = bytesFor(value);
                out.push_back(static_cast<std::uint8_t>(0x80 | (bytes - 1)));
                appendBigEndian(out, value, bytes);
                return true;
            }
            case PLIST_ARRAY:
                writeMarker(0xA0, entry.references.size());
                writeReferences(entry.references);
                return true;
            case PLIST_DICT:
                writeMarker(0xD0, entry.references.size() / 2);
                writeReferences(entry.references);
                return true;
            default:
                return false;
        }
    }

    std::size_t referenceBytes() const { return referenceBytes_; }

  private:
    const std::unordered_set<plist_t>& wide_;
    std::size_t referenceBytes_;

    void writeInteger(std::uint64_t value) {
        const std::size_t bytes = bytesFor(value);
        out.push_back(static_cast<std::uint8_t>(0x10 | std::countr_zero(bytes)));
        appendBigEndian(out, value, bytes);
    }

    // A kind marker with its count: in the low four bits, or 0xF followed by an integer.
    void writeMarker(std::uint8_t kind, std::uint64_t count) {
        if (count < 15) {
            out.push_back(static_cast<std::uint8_t>(kind | count));
            return;
        }
        out.push_back(static_cast<std::uint8_t>(kind | 0x0F));
        writeInteger(count);
    }

    void writeReferences(const std::vector<std::uint64_t>& references) {
        for (const std::uint64_t reference : references)
            appendBigEndian(out, reference, referenceBytes_);
    }

    // ASCII texts are stored as they are, any other as UTF-16 (big-endian).
    bool writeText(std::string_view text) {
        bool ascii = true;
        for (const char c : text) ascii = ascii && static_cast<unsigned char>(c) < 0x80;
        if (ascii) {
            writeMarker(0x50, text.size());
            out.insert(out.end(), text.begin(), text.end());
            return true;
        }
        std::vector<std::uint16_t> units;
        units.reserve(text.size());
        for (std::size_t at = 0; at < text.size();) {
            const platform_internal::Utf8Step step = platform_internal::decodeUtf8(text, at);
            if (!step.wellFormed) return false;
            at += step.length;
            if (step.codePoint < 0x10000) {
                units.push_back(static_cast<std::uint16_t>(step.codePoint));
            } else {
                const char32_t offset = step.codePoint - 0x10000;
                units.push_back(static_cast<std::uint16_t>(0xD800 + (offset >> 10)));
                units.push_back(static_cast<std::uint16_t>(0xDC00 + (offset & 0x3FF)));
            }
        }
        writeMarker(0x60, units.size());
        for (const std::uint16_t unit : units) appendBigEndian(out, unit, 2);
        return true;
    }
};

}  // namespace

std::optional<Data> writeBinaryPropertyList(
    plist_t root, const std::unordered_set<plist_t>& sixteenByteIntegers) {
    if (!root) return std::nullopt;
    Flattener flattener;
    flattener.add(root);
    const std::vector<Entry>& entries = flattener.entries;
    Writer writer(sixteenByteIntegers, entries.size());
    std::vector<std::uint64_t> offsets;
    offsets.reserve(entries.size());
    for (const Entry& entry : entries) {
        offsets.push_back(writer.out.size());
        if (!writer.write(entry)) return std::nullopt;
    }
    Data out = std::move(writer.out);
    const std::uint64_t offsetTable = out.size();
    const std::size_t offsetBytes = bytesFor(offsetTable);
    for (const std::uint64_t offset : offsets) appendBigEndian(out, offset, offsetBytes);
    // The trailer: six unused bytes, the two sizes, then object count, top object and the
    // offset table's position as 8-byte integers.
    appendBigEndian(out, 0, 6);
    out.push_back(static_cast<std::uint8_t>(offsetBytes));
    out.push_back(static_cast<std::uint8_t>(writer.referenceBytes()));
    appendBigEndian(out, entries.size(), 8);
    appendBigEndian(out, 0, 8);
    appendBigEndian(out, offsetTable, 8);
    return out;
}

}  // namespace vn::coding_internal

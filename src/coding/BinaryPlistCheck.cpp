#include "coding/BinaryPlistCheck.h"

#include <cstring>
#include <limits>
#include <vector>

namespace vn::coding_internal {
namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;

std::uint64_t readBigEndian(const std::uint8_t* bytes, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) value = (value << 8) | bytes[i];
    return value;
}

bool isValidWidth(std::uint8_t width) {
    return width == 1 || width == 2 || width == 4 || width == 8;
}

// Where an object's references are: `count` references of `refSize` bytes starting at `start`.
struct References {
    std::size_t start = 0;
    std::uint64_t count = 0;
    bool isDictionary = false;
};

class Checker {
  public:
    Checker(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

    std::optional<std::string> run() {
        if (auto problem = readTrailer()) return problem;
        if (auto problem = readOffsets()) return problem;
        return walk();
    }

  private:
    std::optional<std::string> readTrailer() {
        if (size_ < kHeaderSize + kTrailerSize) return "too short to be a binary property list";
        if (std::memcmp(bytes_, "bplist00", kHeaderSize) != 0) return "not a binary property list";
        const std::uint8_t* trailer = bytes_ + size_ - kTrailerSize;
        offsetSize_ = trailer[6];
        refSize_ = trailer[7];
        objectCount_ = readBigEndian(trailer + 8, 8);
        topObject_ = readBigEndian(trailer + 16, 8);
        tableOffset_ = readBigEndian(trailer + 24, 8);
        if (!isValidWidth(offsetSize_) || !isValidWidth(refSize_))
            return "bad offset or reference size";
        const std::size_t tableLimit = size_ - kTrailerSize;
        if (objectCount_ == 0 || topObject_ >= objectCount_)
            return "bad object count or top object";
        if (tableOffset_ < kHeaderSize || tableOffset_ > tableLimit)
            return "offset table outside the bytes";
        if (objectCount_ > (tableLimit - tableOffset_) / offsetSize_)
            return "offset table outside the bytes";
        return std::nullopt;
    }

    std::optional<std::string> readOffsets() {
        offsets_.resize(static_cast<std::size_t>(objectCount_));
        for (std::size_t i = 0; i < offsets_.size(); ++i) {
            const std::uint64_t offset =
                readBigEndian(bytes_ + tableOffset_ + i * offsetSize_, offsetSize_);
            if (offset < kHeaderSize || offset >= tableOffset_)
                return "object offset outside the bytes";
            offsets_[i] = static_cast<std::size_t>(offset);
        }
        return std::nullopt;
    }

    // Reads the element count that follows a marker whose low nibble is `info`; advances pos.
    std::optional<std::uint64_t> readCount(std::uint8_t info, std::size_t& pos) const {
        if (info != 0x0F) return info;
        if (pos >= tableOffset_) return std::nullopt;
        const std::uint8_t marker = bytes_[pos++];
        if ((marker & 0xF0) != 0x10 || (marker & 0x0F) > 3) return std::nullopt;
        const std::size_t width = std::size_t{1} << (marker & 0x0F);
        if (width > tableOffset_ - pos) return std::nullopt;
        const std::uint64_t count = readBigEndian(bytes_ + pos, width);
        pos += width;
        return count;
    }

    // Whether `length` bytes from pos lie inside the object area.
    bool fits(std::size_t pos, std::uint64_t length) const {
        return pos <= tableOffset_ && length <= tableOffset_ - pos;
    }

    // libplist keeps texts NUL-terminated: a NUL would silently cut a value short, and makes
    // libplist assert (and so abort the process) when the text is a dictionary key. Bytes above
    // 127 in an ASCII string and lone UTF-16 surrogates would come out as invalid UTF-8.
    bool isPlainAscii(std::size_t pos, std::uint64_t count) const {
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint8_t byte = bytes_[pos + i];
            if (byte == 0 || byte > 0x7F) return false;
        }
        return true;
    }

    bool isWellFormedUtf16(std::size_t pos, std::uint64_t count) const {
        for (std::uint64_t i = 0; i < count; ++i) {
            const auto unit = static_cast<std::uint16_t>(readBigEndian(bytes_ + pos + i * 2, 2));
            if (unit == 0 || (unit >= 0xDC00 && unit <= 0xDFFF)) return false;
            if (unit >= 0xD800 && unit <= 0xDBFF) {
                if (++i == count) return false;
                const auto low = static_cast<std::uint16_t>(readBigEndian(bytes_ + pos + i * 2, 2));
                if (low < 0xDC00 || low > 0xDFFF) return false;
            }
        }
        return true;
    }

    // Checks object `index` in isolation and finds its references.
    std::optional<std::string> inspect(std::size_t index, References& references) const {
        std::size_t pos = offsets_[index];
        const std::uint8_t marker = bytes_[pos++];
        const std::uint8_t type = marker >> 4;
        const std::uint8_t info = marker & 0x0F;
        switch (type) {
            case 0x0:
                return std::nullopt;
            case 0x1:
                if (info > 4 || !fits(pos, std::uint64_t{1} << info)) return "bad integer";
                return std::nullopt;
            case 0x2:
                if (info < 2 || info > 3 || !fits(pos, std::uint64_t{1} << info)) return "bad real";
                return std::nullopt;
            case 0x3:
                if (info != 3 || !fits(pos, 8)) return "bad date";
                return std::nullopt;
            case 0x4:
            case 0x5:
            case 0x6: {
                const auto count = readCount(info, pos);
                const std::uint64_t unit = type == 0x6 ? 2 : 1;
                if (!count || *count > tableOffset_ || !fits(pos, *count * unit))
                    return "bad data or string";
                if (type == 0x5 && !isPlainAscii(pos, *count))
                    return "ASCII string with a NUL or a byte above 127";
                if (type == 0x6 && !isWellFormedUtf16(pos, *count))
                    return "UTF-16 string with a NUL or a lone surrogate";
                return std::nullopt;
            }
            case 0x8:
                if (info > 7 || !fits(pos, std::uint64_t{info} + 1)) return "bad UID";
                return std::nullopt;
            case 0xA:
            case 0xC:
            case 0xD: {
                const auto count = readCount(info, pos);
                const std::uint64_t perEntry = type == 0xD ? 2 : 1;
                if (!count || *count > tableOffset_ || !fits(pos, *count * perEntry * refSize_)) {
                    return "bad container";
                }
                references = References{pos, *count * perEntry, type == 0xD};
                return std::nullopt;
            }
            default:
                return "unknown object type";
        }
    }

    bool isString(std::uint64_t index) const {
        const std::uint8_t type = bytes_[offsets_[static_cast<std::size_t>(index)]] >> 4;
        return type == 0x5 || type == 0x6;
    }

    // Depth-first walk from the top object without recursion: detects containers that contain
    // themselves, measures nesting and counts the nodes of the expanded tree.
    std::optional<std::string> walk() {
        enum class Mark : std::uint8_t { unseen, open, done };
        struct Frame {
            std::size_t index;
            References references;
            std::uint64_t next = 0;
            std::uint64_t expanded = 1;
            int depth = 0;
        };
        std::vector<Mark> marks(offsets_.size(), Mark::unseen);
        std::vector<std::uint64_t> expanded(offsets_.size(), 0);
        std::vector<int> depths(offsets_.size(), 0);
        const std::uint64_t limit = size_;
        std::vector<Frame> stack;

        auto open = [&](std::size_t index) -> std::optional<std::string> {
            References references;
            if (auto problem = inspect(index, references)) return problem;
            if (stack.size() >= static_cast<std::size_t>(kMaxPropertyListDepth))
                return "nested too deeply";
            marks[index] = Mark::open;
            stack.push_back(Frame{index, references});
            return std::nullopt;
        };
        if (auto problem = open(static_cast<std::size_t>(topObject_))) return problem;

        while (!stack.empty()) {
            Frame& frame = stack.back();
            if (frame.next == frame.references.count) {
                marks[frame.index] = Mark::done;
                expanded[frame.index] = frame.expanded;
                depths[frame.index] = frame.depth;
                const Frame finished = frame;
                stack.pop_back();
                if (!stack.empty()) {
                    Frame& parent = stack.back();
                    parent.expanded += finished.expanded;
                    parent.depth = std::max(parent.depth, finished.depth + 1);
                    if (parent.expanded > limit) return "expands beyond its size";
                }
                continue;
            }
            const std::uint64_t position = frame.next++;
            const std::uint64_t child =
                readBigEndian(bytes_ + frame.references.start + position * refSize_, refSize_);
            if (child >= objectCount_) return "reference outside the object table";
            const bool isKey =
                frame.references.isDictionary && position < frame.references.count / 2;
            if (isKey && !isString(child)) return "dictionary key that is not a string";
            const auto childIndex = static_cast<std::size_t>(child);
            switch (marks[childIndex]) {
                case Mark::open:
                    return "container that contains itself";
                case Mark::done:
                    frame.expanded += expanded[childIndex];
                    frame.depth = std::max(frame.depth, depths[childIndex] + 1);
                    if (frame.expanded > limit) return "expands beyond its size";
                    if (stack.size() + static_cast<std::size_t>(depths[childIndex]) >=
                        static_cast<std::size_t>(kMaxPropertyListDepth)) {
                        return "nested too deeply";
                    }
                    break;
                case Mark::unseen:
                    if (auto problem = open(childIndex)) return problem;
                    break;
            }
        }
        return std::nullopt;
    }

    const std::uint8_t* bytes_;
    std::size_t size_;
    std::uint8_t offsetSize_ = 0;
    std::uint8_t refSize_ = 0;
    std::uint64_t objectCount_ = 0;
    std::uint64_t topObject_ = 0;
    std::uint64_t tableOffset_ = 0;
    std::vector<std::size_t> offsets_;
};

}  // namespace

std::optional<std::string> checkBinaryPropertyList(const std::uint8_t* bytes, std::size_t size) {
    if (size > std::numeric_limits<std::uint32_t>::max()) return "larger than 4 GiB";
    return Checker(bytes, size).run();
}

}  // namespace vn::coding_internal

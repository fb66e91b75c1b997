#include "FileReading.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vn::tool {
namespace {

// Closes the descriptor when the reading ends, however it ends.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return descriptor_; }

  private:
    int descriptor_;
};

std::optional<Data> fail(std::string* problem, std::string text) {
    if (problem) *problem = std::move(text);
    return std::nullopt;
}

}  // namespace

std::optional<Data> readRegularFile(const std::string& path, std::string* problem,
                                    std::size_t maxBytes) {
    // Non-blocking, so that a named pipe is refused below instead of waiting for a writer.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.get() < 0) return fail(problem, "cannot open " + path + ": " + std::strerror(errno));
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        return fail(problem, "cannot read " + path + ": " + std::strerror(errno));
    if (!S_ISREG(status.st_mode)) return fail(problem, path + " is not a regular file");
    if (static_cast<std::uintmax_t>(status.st_size) > maxBytes)
        return fail(problem, path + " is larger than " + std::to_string(maxBytes) + " bytes");
    Data content;
    std::uint8_t buffer[65536];
    for (;;) {
        const ssize_t count = ::read(file.get(), buffer, sizeof buffer);
        if (count == 0) break;
        if (count < 0) {
            if (errno == EINTR) continue;
            return fail(problem, "cannot read " + path + ": " + std::strerror(errno));
        }
        if (content.size() + static_cast<std::size_t>(count) > maxBytes)
            return fail(problem, path + " is larger than " + std::to_string(maxBytes) + " bytes");
        content.insert(content.end(), buffer, buffer + count);
    }
    return content;
}

}  // namespace vn::tool

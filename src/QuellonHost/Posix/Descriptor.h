#pragma once

#include <optional>
#include <utility>

namespace quellon {

/// A file descriptor and its owner. Move-only.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_{number} {}
    Descriptor(Descriptor&& other) noexcept : number_{std::exchange(other.number_, -1)} {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() { close(); }

    /// The number; negative when there is none.
    [[nodiscard]] int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }
    /// Closes it. False when bytes that were written could not be kept after all.
    bool close();

private:
    int number_ = -1;
};

/// The two ends of a pipe.
struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};

/// A pipe that no child inherits, both ends above the three standard descriptors; absent when the system has none left.
[[nodiscard]] std::optional<Pipe> makePipe();

/// From now on a read or a write that would block fails with EAGAIN.
void setNonBlocking(const Descriptor& descriptor);

} // namespace quellon

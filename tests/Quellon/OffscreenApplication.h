#pragma once

#include <QApplication>

#include <array>
#include <cstdlib>
#include <memory>

namespace quellon {

/// The toolkit's application, offscreen, on any machine. It must outlive every window.
class OffscreenApplication {
public:
    OffscreenApplication()
    {
        setenv("QT_QPA_PLATFORM", "offscreen", 1); // NOLINT(concurrency-mt-unsafe): no other thread yet
        application_ = std::make_unique<QApplication>(count_, arguments_.data());
    }

private:
    std::array<char, 5> name_{"test"};
    std::array<char*, 2> arguments_{name_.data(), nullptr};
    int count_ = 1;
    std::unique_ptr<QApplication> application_;
};

} // namespace quellon

#include "QuellonProbe/PrivateBus.h"

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace quellon::testing {
namespace {

constexpr const char* service = "org.freedesktop.NetworkManager";
constexpr const char* devicePath = "/org/freedesktop/NetworkManager/Devices/1";
constexpr std::uint64_t turn = 20'000; ///< microseconds after which the fake looks whether it shall stop

int reply(sd_bus_message* call, FakeNetworkManager& fake)
{
    const char* first = "";
    const char* second = "";
    if (sd_bus_message_is_method_call(call, service, "GetDeviceByIpIface") > 0) {
        sd_bus_message_read(call, "s", &first);
        if (std::strcmp(first, FakeNetworkManager::interface) == 0)
            return sd_bus_reply_method_return(call, "o", devicePath);
        return sd_bus_reply_method_errorf(call, "org.freedesktop.NetworkManager.UnknownDevice", "No device");
    }
    if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Get") > 0 &&
        std::strcmp(sd_bus_message_get_path(call), devicePath) == 0) {
        sd_bus_message_read(call, "ss", &first, &second);
        if (std::strcmp(first, "org.freedesktop.NetworkManager.Device") == 0) {
            if (std::strcmp(second, "Metered") == 0)
                return sd_bus_reply_method_return(call, "v", "u", fake.metered.load());
            if (std::strcmp(second, "DeviceType") == 0)
                return sd_bus_reply_method_return(call, "v", "u", fake.deviceType.load());
        }
    }
    return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_METHOD, "Not asked for by the test");
}

int onMessage(sd_bus_message* message, void* data, sd_bus_error*)
{
    auto& fake = *static_cast<FakeNetworkManager*>(data);
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return 0;
    return fake.answers ? reply(message, fake) : 1;
}

} // namespace

void PrivateBus::start()
{
    folder_.write("bus.conf", "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
                              "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                              "<busconfig><listen>" +
                                  address() +
                                  "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                                  "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>\n");
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
        dup2(ends[1], STDOUT_FILENO);
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO); // it tells of limits that don't matter here
        const auto configuration = "--config-file=" + folder_.path() + "/bus.conf";
        execlp("dbus-daemon", "dbus-daemon", configuration.c_str(), "--nofork", "--print-address=1", nullptr);
        _exit(127);
    }
    close(ends[1]);
    char first = 0;
    const bool isUp = read(ends[0], &first, 1) == 1; // it prints its address once it listens
    close(ends[0]);
    if (!isUp) stop();
}

void PrivateBus::stop()
{
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
    pid_ = -1;
    folder_.remove("bus");
}

void FakeNetworkManager::start()
{
    quit_ = false;
    ready_ = false;
    thread_ = std::thread{[this] { run(); }};
    ready_.wait(false);
}

void FakeNetworkManager::stop()
{
    quit_ = true;
    if (thread_.joinable()) thread_.join();
}

void FakeNetworkManager::run()
{
    sd_bus* bus = nullptr;
    owned_ = sd_bus_new(&bus) >= 0 && sd_bus_set_address(bus, address_.c_str()) >= 0 &&
             sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_start(bus) >= 0 &&
             sd_bus_add_filter(bus, nullptr, onMessage, this) >= 0 && sd_bus_request_name(bus, service, 0) >= 0;
    ready_ = true;
    ready_.notify_all();
    while (owned_ && !quit_) {
        const int done = sd_bus_process(bus, nullptr);
        if (done < 0) break;
        if (done == 0) sd_bus_wait(bus, turn);
    }
    if (owned_) sd_bus_release_name(bus, service);
    sd_bus_flush_close_unref(bus);
}

} // namespace quellon::testing

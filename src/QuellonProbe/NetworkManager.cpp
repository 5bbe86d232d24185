#include "QuellonProbe/NetworkManager.h"

namespace quellon {
namespace {

constexpr const char* service = "org.freedesktop.NetworkManager";
constexpr const char* servicePath = "/org/freedesktop/NetworkManager";
constexpr const char* deviceInterface = "org.freedesktop.NetworkManager.Device";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr std::uint32_t modemType = 8; ///< NM_DEVICE_TYPE_MODEM

} // namespace

std::optional<ManagedDevice> NetworkManager::device(const std::string& interface, MessageBus::Deadline deadline)
{
    const auto found = bus_.call({service, servicePath, service, "GetDeviceByIpIface", {interface}}, deadline);
    const auto path = found ? BusWire::text(*found) : std::nullopt;
    if (!path) return std::nullopt;
    const auto metered = property(*path, "Metered", deadline);
    const auto type = metered ? property(*path, "DeviceType", deadline) : std::nullopt;
    if (!type) return std::nullopt;
    const bool isKnown = *metered <= static_cast<std::uint32_t>(Metered::guessNo);
    return ManagedDevice{isKnown ? static_cast<Metered>(*metered) : Metered::unknown, *type == modemType};
}

std::optional<std::uint32_t> NetworkManager::property(const std::string& path, const std::string& name,
                                                      MessageBus::Deadline deadline)
{
    const auto reply = bus_.call({service, path, propertiesInterface, "Get", {deviceInterface, name}}, deadline);
    return reply ? BusWire::variantNumber(*reply) : std::nullopt;
}

} // namespace quellon

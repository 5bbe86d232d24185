#include "QuellonHost/MacOS/MacProcessControl.h"

#include <cstring>
#include <filesystem>
#include <mach-o/dyld.h>
#include <mach/mach.h>
#include <system_error>

namespace quellon {

namespace {

std::optional<task_vm_info_data_t> memory()
{
    task_vm_info_data_t info{};
    mach_msg_type_number_t count = TASK_VM_INFO_COUNT;
    // NOLINTNEXTLINE: the call takes every kind of answer through one type
    if (task_info(mach_task_self(), TASK_VM_INFO, reinterpret_cast<task_info_t>(&info), &count) != KERN_SUCCESS) {
        return std::nullopt;
    }
    return info;
}

/// 0 when the kernel does not tell.
std::size_t threads()
{
    thread_act_array_t list = nullptr;
    mach_msg_type_number_t count = 0;
    if (task_threads(mach_task_self(), &list, &count) != KERN_SUCCESS) return 0;
    for (mach_msg_type_number_t i = 0; i < count; ++i) mach_port_deallocate(mach_task_self(), list[i]);
    // NOLINTNEXTLINE: the kernel hands over pages, and takes them back by address
    vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(list), count * sizeof(thread_act_t));
    return count;
}

} // namespace

std::string MacProcessControl::processName() const
{
    std::uint32_t size = 0;
    (void)_NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
    path.resize(std::strlen(path.c_str()));
    std::error_code error;
    const auto resolved = std::filesystem::canonical(path, error);
    return (error ? std::filesystem::path{path} : resolved).filename().string();
}

std::optional<ProcessMetrics> MacProcessControl::metrics() const
{
    const auto info = memory();
    if (!info) return std::nullopt;
    return ProcessMetrics{info->resident_size, info->phys_footprint, threads()};
}

} // namespace quellon

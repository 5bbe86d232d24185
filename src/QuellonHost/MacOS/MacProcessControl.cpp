#include "QuellonHost/MacOS/MacProcessControl.h"

#include <cstring>
#include <filesystem>
#include <mach-o/dyld.h>
#include <mach/mach.h>
#include <system_error>

namespace quellon {

namespace {

/// One kind of information on this process; absent when the kernel does not tell.
template <typename Info>
std::optional<Info> taskInfo(task_flavor_t kind)
{
    Info info{};
    mach_msg_type_number_t count = sizeof(Info) / sizeof(natural_t);
    // NOLINTNEXTLINE: the call takes every kind of answer through one type
    if (task_info(mach_task_self(), kind, reinterpret_cast<task_info_t>(&info), &count) != KERN_SUCCESS) {
        return std::nullopt;
    }
    return info;
}

/// How many threads there are; absent when the kernel does not tell.
std::optional<std::size_t> threads()
{
    thread_act_array_t list = nullptr;
    mach_msg_type_number_t count = 0;
    if (task_threads(mach_task_self(), &list, &count) != KERN_SUCCESS || list == nullptr) return std::nullopt;
    for (mach_msg_type_number_t i = 0; i < count; ++i) mach_port_deallocate(mach_task_self(), list[i]);
    // NOLINTNEXTLINE: the kernel hands over pages, and takes them back by address
    vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(list), count * sizeof(thread_act_t));
    return count;
}

} // namespace

std::filesystem::path MacProcessControl::executable()
{
    std::uint32_t size = 0;
    (void)_NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
    path.resize(std::strlen(path.c_str()));
    std::error_code error;
    const auto resolved = std::filesystem::canonical(path, error);
    return error ? std::filesystem::path{path} : resolved;
}

std::string MacProcessControl::processName() const
{
    return executable().filename().string();
}

std::optional<ProcessMetrics> MacProcessControl::metrics() const
{
    const auto basic = taskInfo<mach_task_basic_info_data_t>(MACH_TASK_BASIC_INFO);
    const auto threadCount = threads();
    if (!basic || !threadCount) return std::nullopt;
    const auto memory = taskInfo<task_vm_info_data_t>(TASK_VM_INFO);
    return ProcessMetrics{basic->resident_size, memory ? memory->phys_footprint : basic->resident_size, *threadCount};
}

} // namespace quellon

#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What must hold for every input. Ends the run, which the fuzzer reports with the input.
#define FUZZ_CHECK(condition)                                                                                          \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition);                        \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)

namespace quellon::fuzz {

[[nodiscard]] inline bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

/// True for a view into the storage of `text`.
[[nodiscard]] inline bool isWithin(std::string_view text, std::string_view view)
{
    return view.empty() || (view.data() >= text.data() && view.data() + view.size() <= text.data() + text.size());
}

} // namespace quellon::fuzz

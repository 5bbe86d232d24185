#pragma once

/// Planted: uses std::string without including it, which the check of headers has to find.
struct NotAlone {
    std::string text;
};

#pragma once

#include <string>

/// What "--snapshot" and "--redact" do: texts for somebody who helps, without a guard and without a view.
namespace quellon::SupportProgram {

/// Prints the snapshot of the running guard. Where none answers it prints what the state folder tells, with a remark
/// behind it, and says so on standard error. Gives the exit status.
[[nodiscard]] int printSnapshot();

/// Prints the shape of the JSON file at `path`, or of standard input for "-". Gives the exit status.
[[nodiscard]] int printRedacted(const std::string& path);

} // namespace quellon::SupportProgram

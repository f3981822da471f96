#pragma once

#include <string_view>

namespace lab {

// The texts of the files that go into every page; the build fills them in.

extern const std::string_view chartLibrary;
extern const std::string_view chartLibraryStyle;
extern const std::string_view pageScript;
extern const std::string_view pageStyle;

} // namespace lab

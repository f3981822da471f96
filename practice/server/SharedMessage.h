#pragma once

#include <memory>
#include <string>

namespace practice {

/// A message made once and shared by every client it goes to.
using SharedMessage = std::shared_ptr<const std::string>;

} // namespace practice

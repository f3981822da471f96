#pragma once

#include <string>

inline bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

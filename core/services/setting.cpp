// SPDX-License-Identifier: MIT
#include "services/setting.h"

#include <climits>

namespace ork::services {

int leading_number(const char* text, int otherwise)
{
    if (text == nullptr) return otherwise;
    char* end;
    const long value = std::strtol(text, &end, 10);
    if (end == text || value < 0) return otherwise;
    return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

} // namespace ork::services

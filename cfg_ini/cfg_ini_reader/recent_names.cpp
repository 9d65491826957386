#include "cfg_ini/cfg_ini_reader/recent_names.h"

#include <algorithm>

constinit RECENT_NAME recent_names[1U << recent_bits] = {};

void forget_recent_names()
{
    std::ranges::fill(recent_names, RECENT_NAME{});
}

// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tarchecksums.h"

#include <cstdio>
#include <cstring>
#include <numeric>

namespace Varnel::Test {

void mendTarChecksums(uint8_t *bytes, size_t size)
{
    constexpr size_t BLOCK_SIZE = 512;
    constexpr size_t MAGIC = 257;
    constexpr size_t SUM = 148;
    constexpr size_t SUM_SIZE = 8;
    for (size_t begin = 0; begin + BLOCK_SIZE <= size; begin += BLOCK_SIZE) {
        uint8_t *block = bytes + begin;
        if (std::memcmp(block + MAGIC, "ustar", 5) != 0)
            continue;
        std::memset(block + SUM, ' ', SUM_SIZE);
        const unsigned sum = std::accumulate(block, block + BLOCK_SIZE, 0U);
        char text[SUM_SIZE + 1];
        std::snprintf(text, sizeof text, "%06o", sum & 0777777);
        std::memcpy(block + SUM, text, 7); // with a zero behind the digits
    }
}

} // namespace Varnel::Test

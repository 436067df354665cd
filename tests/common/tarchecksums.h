// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>

namespace Varnel::Test {

/** Corrects the checksum in everything that looks like a header of a plain tar. */
void mendTarChecksums(uint8_t *bytes, size_t size);

} // namespace Varnel::Test

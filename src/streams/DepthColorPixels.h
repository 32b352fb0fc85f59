#pragma once

#include <cstddef>

/// The colour bytes of `count` pixels of colour aligned to depth: three of every seven bytes, packed. Reads
/// nothing past the last pixel and writes nothing past its colour.
void unpackColor(const unsigned char *pixels, std::size_t count, unsigned char *colors);

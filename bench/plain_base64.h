// The benchmarks' peer base64 coder: one table each way, no steps, no checks, no buffer rule, as
// fast as plain code gets.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace plain_base64 {

inline constexpr char kAlphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline void Encode(const std::uint8_t* in, std::size_t size, std::string& out) {
  out.resize((size + 2) / 3 * 4);
  char* o = out.data();
  std::size_t i = 0;
  for (; i + 3 <= size; i += 3, o += 4) {
    const std::uint32_t v = std::uint32_t{in[i]} << 16 | std::uint32_t{in[i + 1]} << 8 | in[i + 2];
    o[0] = kAlphabet[v >> 18];
    o[1] = kAlphabet[(v >> 12) & 63];
    o[2] = kAlphabet[(v >> 6) & 63];
    o[3] = kAlphabet[v & 63];
  }
  if (i < size) {
    const std::uint32_t v =
        std::uint32_t{in[i]} << 16 | (i + 1 < size ? std::uint32_t{in[i + 1]} << 8 : 0u);
    o[0] = kAlphabet[v >> 18];
    o[1] = kAlphabet[(v >> 12) & 63];
    o[2] = i + 1 < size ? kAlphabet[(v >> 6) & 63] : '=';
    o[3] = '=';
  }
}

inline void Decode(const char* in, std::size_t size, std::vector<std::uint8_t>& out) {
  static const std::array<std::uint8_t, 256> table = [] {
    std::array<std::uint8_t, 256> t{};
    for (std::uint8_t i = 0; i < 64; ++i) t[static_cast<std::uint8_t>(kAlphabet[i])] = i;
    return t;
  }();
  out.resize(size / 4 * 3);
  std::uint8_t* o = out.data();
  for (std::size_t i = 0; i + 4 <= size; i += 4, o += 3) {
    const std::uint32_t v = std::uint32_t{table[static_cast<std::uint8_t>(in[i])]} << 18 |
                            std::uint32_t{table[static_cast<std::uint8_t>(in[i + 1])]} << 12 |
                            std::uint32_t{table[static_cast<std::uint8_t>(in[i + 2])]} << 6 |
                            table[static_cast<std::uint8_t>(in[i + 3])];
    o[0] = static_cast<std::uint8_t>(v >> 16);
    o[1] = static_cast<std::uint8_t>(v >> 8);
    o[2] = static_cast<std::uint8_t>(v);
  }
}

}  // namespace plain_base64

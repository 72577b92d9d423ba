#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <string>
#include <string_view>

namespace Examples
{

/** The number in the first bytes of @p bytes, which are enough for it. */
template <typename T>
T LoadNumber(std::string_view bytes, std::endian order)
{
    std::array<char, sizeof(T)> number{};
    std::copy_n(bytes.begin(), sizeof(T), number.begin());
    if (order != std::endian::native)
    {
        std::reverse(number.begin(), number.end());
    }
    return std::bit_cast<T>(number);
}

/** Appends a number, its lowest byte first. */
template <typename T>
void AppendLittleEndian(T value, std::string* bytes)
{
    auto number = std::bit_cast<std::array<char, sizeof(T)>>(value);
    if constexpr (std::endian::native != std::endian::little)
    {
        std::reverse(number.begin(), number.end());
    }
    bytes->append(number.begin(), number.end());
}

} // namespace Examples

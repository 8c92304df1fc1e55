#include "text.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace GenApi_3_0 {
namespace impl {

std::string_view trim(std::string_view text)
{
    size_t begin = 0;
    while (begin < text.size() && isAsciiSpace(text[begin]))
        ++begin;
    size_t end = text.size();
    while (end > begin && isAsciiSpace(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}

bool equalsIgnoreCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    // ASCII only: std::tolower follows the host's C locale.
    auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
    for (size_t i = 0; i < a.size(); ++i) {
        if (fold(a[i]) != fold(b[i]))
            return false;
    }
    return true;
}

std::optional<int64_t> parseInt(std::string_view text)
{
    text = trim(text);
    bool negative = false;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        negative = text[0] == '-';
        text.remove_prefix(1);
    }
    if (text.empty())
        return std::nullopt;
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    uint64_t magnitude = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        return std::nullopt;
    if (base == 10) {
        const uint64_t limit = negative ? uint64_t(1) << 63 : (uint64_t(1) << 63) - 1;
        if (magnitude > limit)
            return std::nullopt;
    }
    // Hexadecimal may spell all 64 bits, as register masks do.
    const uint64_t bits = negative ? uint64_t(0) - magnitude : magnitude;
    return static_cast<int64_t>(bits);
}

std::optional<double> parseDouble(std::string_view text)
{
    text = trim(text);
    if (!text.empty() && text[0] == '+')
        text.remove_prefix(1);
    if (text.empty())
        return std::nullopt;
    const bool negative = text[0] == '-';
    std::string_view body = negative ? text.substr(1) : text;
    if (body.size() > 2 && body[0] == '0' && (body[1] == 'x' || body[1] == 'X')) {
        if (auto asInt = parseInt(text))
            return static_cast<double>(*asInt);
        return std::nullopt;
    }
    if (equalsIgnoreCase(body, "inf") || equalsIgnoreCase(body, "infinity"))
        return negative ? -std::numeric_limits<double>::infinity()
                        : std::numeric_limits<double>::infinity();
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::invalid_argument || result.ptr != text.data() + text.size())
        return std::nullopt;
    if (result.ec == std::errc::result_out_of_range)
        return std::nullopt;
    return value;
}

std::optional<bool> parseBool(std::string_view text)
{
    text = trim(text);
    if (equalsIgnoreCase(text, "true") || equalsIgnoreCase(text, "yes") || text == "1")
        return true;
    if (equalsIgnoreCase(text, "false") || equalsIgnoreCase(text, "no") || text == "0")
        return false;
    return std::nullopt;
}

std::optional<int64_t> parseIPv4(std::string_view text)
{
    text = trim(text);
    int64_t value = 0;
    for (int part = 0; part < 4; ++part) {
        if (part > 0) {
            if (text.empty() || text[0] != '.')
                return std::nullopt;
            text.remove_prefix(1);
        }
        unsigned byte = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), byte);
        if (result.ec != std::errc() || byte > 255 || result.ptr - text.data() > 3)
            return std::nullopt;
        text.remove_prefix(static_cast<size_t>(result.ptr - text.data()));
        value = (value << 8) | byte;
    }
    if (!text.empty())
        return std::nullopt;
    return value;
}

std::optional<int64_t> parseMAC(std::string_view text)
{
    text = trim(text);
    if (text.size() != 17)
        return std::nullopt;
    int64_t value = 0;
    for (int part = 0; part < 6; ++part) {
        const size_t at = static_cast<size_t>(part) * 3;
        if (part > 0 && text[at - 1] != ':' && text[at - 1] != '-')
            return std::nullopt;
        unsigned byte = 0;
        const auto result = std::from_chars(text.data() + at, text.data() + at + 2, byte, 16);
        if (result.ec != std::errc() || result.ptr != text.data() + at + 2)
            return std::nullopt;
        value = (value << 8) | byte;
    }
    return value;
}

int64_t saturatingRound(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775807.0)
        return std::numeric_limits<int64_t>::max();
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<int64_t>::min();
    return std::llround(value);
}

std::string formatInt(int64_t value, ERepresentation representation)
{
    char buffer[64];
    switch (representation) {
    case HexNumber:
        std::snprintf(buffer, sizeof buffer, "0x%llX",
                      static_cast<unsigned long long>(static_cast<uint64_t>(value)));
        return buffer;
    case IPV4Address: {
        const uint64_t v = static_cast<uint64_t>(value);
        std::snprintf(buffer, sizeof buffer, "%u.%u.%u.%u", unsigned((v >> 24) & 0xFF),
                      unsigned((v >> 16) & 0xFF), unsigned((v >> 8) & 0xFF), unsigned(v & 0xFF));
        return buffer;
    }
    case MACAddress: {
        const uint64_t v = static_cast<uint64_t>(value);
        std::snprintf(buffer, sizeof buffer, "%02X:%02X:%02X:%02X:%02X:%02X",
                      unsigned((v >> 40) & 0xFF), unsigned((v >> 32) & 0xFF),
                      unsigned((v >> 24) & 0xFF), unsigned((v >> 16) & 0xFF),
                      unsigned((v >> 8) & 0xFF), unsigned(v & 0xFF));
        return buffer;
    }
    default:
        return std::to_string(value);
    }
}

std::string formatDouble(double value, EDisplayNotation notation, int64_t precision)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value < 0 ? "-inf" : "inf";
    const int digits = static_cast<int>(precision < 0 ? 6 : (precision > 17 ? 17 : precision));
    char buffer[400];
    std::to_chars_result result;
    switch (notation) {
    case fnFixed:
        result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                               digits);
        break;
    case fnScientific:
        result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific,
                               digits);
        break;
    default:
        result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general,
                               digits == 0 ? 1 : digits);
        break;
    }
    if (result.ec != std::errc())
        return formatDoubleExact(value);
    return std::string(buffer, result.ptr);
}

std::string formatDoubleExact(double value)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

} // namespace impl
} // namespace GenApi_3_0

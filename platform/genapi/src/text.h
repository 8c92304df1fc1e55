// Number and text helpers shared by the loader and the nodes. Everything
// here is locale-independent: a host process may have set any C locale.
#ifndef ORBGENAPI_TEXT_H
#define ORBGENAPI_TEXT_H

#include <GenApi/Types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace GenApi_3_0 {
namespace impl {

// White space as XML and formulas have it, whatever the C locale says.
inline bool isAsciiSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
std::string_view trim(std::string_view text);
bool equalsIgnoreCase(std::string_view a, std::string_view b);

// Integers as vendors write them: decimal, 0x hexadecimal, an optional sign,
// surrounding white space.
std::optional<int64_t> parseInt(std::string_view text);
std::optional<double> parseDouble(std::string_view text);
// "true"/"false", "yes"/"no", "1"/"0", any case.
std::optional<bool> parseBool(std::string_view text);
// "a.b.c.d", first byte most significant.
std::optional<int64_t> parseIPv4(std::string_view text);
// Six hexadecimal bytes separated by ':' or '-'.
std::optional<int64_t> parseMAC(std::string_view text);

// The GenICam names of enumerated property values, any case, surrounding
// white space ignored; false and value unchanged for any other text.
bool parseEnum(std::string_view text, EAccessMode &value);
bool parseEnum(std::string_view text, EVisibility &value);
bool parseEnum(std::string_view text, ECachingMode &value);
bool parseEnum(std::string_view text, ERepresentation &value);
bool parseEnum(std::string_view text, EDisplayNotation &value);

// Nearest integer, clamped to the int64 range; NaN gives 0.
int64_t saturatingRound(double value);

std::string formatInt(int64_t value, ERepresentation representation);
std::string formatDouble(double value, EDisplayNotation notation, int64_t precision);
// Shortest text that reads back as the same double.
std::string formatDoubleExact(double value);

} // namespace impl
} // namespace GenApi_3_0

#endif

// The GenICam base types and the small free functions of the interface.
#include <GenApi/GenApi.h>

#include "nodemap.h"
#include "text.h"

#include <cstdio>
#include <ostream>

namespace GenICam_3_0 {

std::ostream &operator<<(std::ostream &stream, const gcstring &text)
{
    return stream << text.str();
}

GenericException::GenericException(const char *description, const char *sourceFileName,
                                   unsigned int sourceLine)
    : GenericException(description, sourceFileName, sourceLine, "GenericException")
{
}

GenericException::GenericException(const char *description, const char *sourceFileName,
                                   unsigned int sourceLine, const char *exceptionType)
    : m_description(description ? description : "")
    , m_sourceFile(sourceFileName ? sourceFileName : "")
    , m_type(exceptionType ? exceptionType : "GenericException")
    , m_sourceLine(sourceLine)
{
    m_what = m_description + " : " + m_type + " thrown (file '" + m_sourceFile + "', line "
        + std::to_string(m_sourceLine) + ")";
}

GenericException::~GenericException() noexcept = default;

const char *GenericException::GetDescription() const noexcept
{
    return m_description.c_str();
}
const char *GenericException::GetSourceFileName() const noexcept
{
    return m_sourceFile.c_str();
}
unsigned int GenericException::GetSourceLine() const noexcept
{
    return m_sourceLine;
}
const char *GenericException::GetExceptionType() const noexcept
{
    return m_type.c_str();
}
const char *GenericException::what() const noexcept
{
    return m_what.c_str();
}

std::string FormatExceptionText(const char *format, va_list args)
{
    if (!format)
        return std::string();
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (needed <= 0)
        return std::string();
    std::string text(static_cast<size_t>(needed) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, args);
    text.resize(static_cast<size_t>(needed));
    return text;
}

} // namespace GenICam_3_0

namespace GenApi_3_0 {

using impl::equalsIgnoreCase;

namespace {

template <class E, size_t N>
bool lookup(std::string_view text, E *value, const std::pair<const char *, E> (&table)[N])
{
    const std::string_view t = impl::trim(text);
    for (const auto &entry : table) {
        if (equalsIgnoreCase(t, entry.first)) {
            if (value)
                *value = entry.second;
            return true;
        }
    }
    return false;
}

const std::pair<const char *, EAccessMode> accessModes[] = {
    { "NI", NI },
    { "NA", NA },
    { "WO", WO },
    { "RO", RO },
    { "RW", RW },
    // As some vendors write them.
    { "R", RO },
    { "W", WO },
    { "ReadOnly", RO },
    { "WriteOnly", WO },
    { "ReadWrite", RW },
};
const std::pair<const char *, EVisibility> visibilities[] = {
    { "Beginner", Beginner },
    { "Expert", Expert },
    { "Guru", Guru },
    { "Invisible", Invisible },
};
const std::pair<const char *, ECachingMode> cachingModes[] = {
    { "NoCache", NoCache },
    { "WriteThrough", WriteThrough },
    { "WriteAround", WriteAround },
};
const std::pair<const char *, ERepresentation> representations[] = {
    { "Linear", Linear },         { "Logarithmic", Logarithmic }, { "Boolean", Boolean },
    { "PureNumber", PureNumber }, { "HexNumber", HexNumber },     { "IPV4Address", IPV4Address },
    { "MACAddress", MACAddress },
};
const std::pair<const char *, EDisplayNotation> notations[] = {
    { "Automatic", fnAutomatic },
    { "Fixed", fnFixed },
    { "Scientific", fnScientific },
};

template <class E, size_t N> gcstring name(E value, const std::pair<const char *, E> (&table)[N])
{
    for (const auto &entry : table)
        if (entry.second == value)
            return entry.first;
    return "Undefined";
}

} // namespace

gcstring EAccessModeClass::ToString(EAccessMode value)
{
    return name(value, accessModes);
}
bool EAccessModeClass::FromString(const gcstring &text, EAccessMode *value)
{
    return lookup(text.str(), value, accessModes);
}
gcstring EVisibilityClass::ToString(EVisibility value)
{
    return name(value, visibilities);
}
bool EVisibilityClass::FromString(const gcstring &text, EVisibility *value)
{
    return lookup(text.str(), value, visibilities);
}
gcstring ECachingModeClass::ToString(ECachingMode value)
{
    return name(value, cachingModes);
}
bool ECachingModeClass::FromString(const gcstring &text, ECachingMode *value)
{
    return lookup(text.str(), value, cachingModes);
}
gcstring ERepresentationClass::ToString(ERepresentation value)
{
    return name(value, representations);
}
bool ERepresentationClass::FromString(const gcstring &text, ERepresentation *value)
{
    return lookup(text.str(), value, representations);
}
gcstring EDisplayNotationClass::ToString(EDisplayNotation value)
{
    return name(value, notations);
}
bool EDisplayNotationClass::FromString(const gcstring &text, EDisplayNotation *value)
{
    return lookup(text.str(), value, notations);
}

gcstring EInterfaceTypeClass::ToString(EInterfaceType value)
{
    static const char *const names[]
        = { "IValue",  "IBase",     "IInteger",  "IBoolean",     "ICommand",   "IFloat",
            "IString", "IRegister", "ICategory", "IEnumeration", "IEnumEntry", "IPort" };
    const auto index = static_cast<size_t>(value);
    return index < sizeof names / sizeof names[0] ? names[index] : "Undefined";
}

void Deregister(CallbackHandleType hCallback)
{
    if (impl::Node *node = impl::nodeForHandle(hCallback))
        node->DeregisterCallback(hCallback);
}

namespace impl {
bool parseEnum(std::string_view text, EAccessMode &value)
{
    return lookup(text, &value, accessModes);
}
bool parseEnum(std::string_view text, EVisibility &value)
{
    return lookup(text, &value, visibilities);
}
bool parseEnum(std::string_view text, ECachingMode &value)
{
    return lookup(text, &value, cachingModes);
}
bool parseEnum(std::string_view text, ERepresentation &value)
{
    return lookup(text, &value, representations);
}
bool parseEnum(std::string_view text, EDisplayNotation &value)
{
    return lookup(text, &value, notations);
}
} // namespace impl

} // namespace GenApi_3_0

/// \file
/// The GenICam exception hierarchy.
///
/// Every failure of the GenApi interface is reported by throwing a subclass of
/// GenericException. GetDescription() is the human-readable reason; for node
/// operations it names the node, for load errors it also gives the line.
#ifndef GENICAM_GCEXCEPTION_H
#define GENICAM_GCEXCEPTION_H

#include <GenICam/GCString.h>

#include <cstdarg>
#include <exception>
#include <string>

namespace GenICam_3_0 {

class GCBASE_API GenericException : public std::exception {
public:
    GenericException(const char *description, const char *sourceFileName, unsigned int sourceLine);
    GenericException(const char *description, const char *sourceFileName, unsigned int sourceLine,
                     const char *exceptionType);
    ~GenericException() noexcept override;

    /// The reason, without the source location.
    virtual const char *GetDescription() const noexcept;
    virtual const char *GetSourceFileName() const noexcept;
    virtual unsigned int GetSourceLine() const noexcept;
    /// The exception type's name, for example "OutOfRangeException".
    virtual const char *GetExceptionType() const noexcept;
    /// The description followed by the type and the source location.
    const char *what() const noexcept override;

private:
    std::string m_description;
    std::string m_sourceFile;
    std::string m_type;
    std::string m_what;
    unsigned int m_sourceLine = 0;
};

#define GENICAM_DECLARE_EXCEPTION(name)                                                            \
    class GCBASE_API name : public GenericException {                                              \
    public:                                                                                        \
        name(const char *description, const char *sourceFileName, unsigned int sourceLine)         \
            : GenericException(description, sourceFileName, sourceLine, #name)                     \
        {                                                                                          \
        }                                                                                          \
        name(const char *description, const char *sourceFileName, unsigned int sourceLine,         \
             const char *exceptionType)                                                            \
            : GenericException(description, sourceFileName, sourceLine, exceptionType)             \
        {                                                                                          \
        }                                                                                          \
    }

/// Memory could not be allocated.
GENICAM_DECLARE_EXCEPTION(BadAllocException);
/// An argument was invalid: an unknown name, a malformed text, a null buffer.
GENICAM_DECLARE_EXCEPTION(InvalidArgumentException);
/// A value lies outside the node's range or off its increment grid.
GENICAM_DECLARE_EXCEPTION(OutOfRangeException);
/// A description property is missing or malformed.
GENICAM_DECLARE_EXCEPTION(PropertyException);
/// A run-time failure: malformed XML, a formula that cannot be evaluated.
GENICAM_DECLARE_EXCEPTION(RuntimeException);
/// A programming error: an empty smart pointer dereferenced, a second load.
GENICAM_DECLARE_EXCEPTION(LogicalErrorException);
/// The node or its register cannot be accessed in the requested way.
GENICAM_DECLARE_EXCEPTION(AccessException);
/// An operation did not finish in time.
GENICAM_DECLARE_EXCEPTION(TimeoutException);
/// A node is not of the requested interface type.
GENICAM_DECLARE_EXCEPTION(DynamicCastException);

#undef GENICAM_DECLARE_EXCEPTION

/// Formats a printf-style description and returns the exception to throw, as
/// in `throw RUNTIME_EXCEPTION("Node '%s' failed", name)`.
template <class E> class ExceptionReporter {
public:
    ExceptionReporter(const char *sourceFileName, unsigned int sourceLine, const char *type)
        : m_file(sourceFileName)
        , m_line(sourceLine)
        , m_type(type)
    {
    }
    E Report(const char *format, ...) const __attribute__((format(printf, 2, 3)));
    E Report(const std::string &text) const { return E(text.c_str(), m_file, m_line, m_type); }
    E Report() const { return E("", m_file, m_line, m_type); }

private:
    const char *m_file;
    unsigned int m_line;
    const char *m_type;
};

#if defined(__GNUC__)
__attribute__((format(printf, 1, 0)))
#endif
GCBASE_API std::string
FormatExceptionText(const char *format, va_list args);

template <class E> E ExceptionReporter<E>::Report(const char *format, ...) const
{
    va_list args;
    va_start(args, format);
    const std::string text = FormatExceptionText(format, args);
    va_end(args);
    return E(text.c_str(), m_file, m_line, m_type);
}

} // namespace GenICam_3_0

#define GENICAM_EXCEPTION_REPORTER(type)                                                           \
    GenICam_3_0::ExceptionReporter<GenICam_3_0::type>(__FILE__, __LINE__, #type).Report
#define GENERIC_EXCEPTION GENICAM_EXCEPTION_REPORTER(GenericException)
#define BAD_ALLOC_EXCEPTION GENICAM_EXCEPTION_REPORTER(BadAllocException)
#define INVALID_ARGUMENT_EXCEPTION GENICAM_EXCEPTION_REPORTER(InvalidArgumentException)
#define OUT_OF_RANGE_EXCEPTION GENICAM_EXCEPTION_REPORTER(OutOfRangeException)
#define PROPERTY_EXCEPTION GENICAM_EXCEPTION_REPORTER(PropertyException)
#define RUNTIME_EXCEPTION GENICAM_EXCEPTION_REPORTER(RuntimeException)
#define LOGICAL_ERROR_EXCEPTION GENICAM_EXCEPTION_REPORTER(LogicalErrorException)
#define ACCESS_EXCEPTION GENICAM_EXCEPTION_REPORTER(AccessException)
#define TIMEOUT_EXCEPTION GENICAM_EXCEPTION_REPORTER(TimeoutException)
#define DYNAMICCAST_EXCEPTION GENICAM_EXCEPTION_REPORTER(DynamicCastException)

#endif

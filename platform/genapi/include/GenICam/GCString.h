/// \file
/// GenICam::gcstring, the string type of the GenICam interfaces, and
/// gcstring_vector. Strings are UTF-8 byte sequences; no member throws except
/// on allocation failure (std::bad_alloc).
#ifndef GENICAM_GCSTRING_H
#define GENICAM_GCSTRING_H

#include <GenICam/GCLinkage.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace GenICam_3_0 {

class GCBASE_API gcstring {
public:
    static const size_t _npos = static_cast<size_t>(-1);
    static size_t npos() { return _npos; }

    gcstring() = default;
    gcstring(const char *text)
        : m_str(text ? text : "")
    {
    }
    gcstring(const char *text, size_t count)
        : m_str(text ? std::string(text, count) : std::string())
    {
    }
    gcstring(size_t count, char ch)
        : m_str(count, ch)
    {
    }
    gcstring(const std::string &text)
        : m_str(text)
    {
    }
    gcstring(std::string &&text)
        : m_str(std::move(text))
    {
    }
    gcstring(const gcstring &) = default;
    gcstring(gcstring &&) noexcept = default;
    gcstring &operator=(const gcstring &) = default;
    gcstring &operator=(gcstring &&) noexcept = default;
    gcstring &operator=(const char *text)
    {
        m_str = text ? text : "";
        return *this;
    }
    virtual ~gcstring() = default;

    const char *c_str() const { return m_str.c_str(); }
    size_t size() const { return m_str.size(); }
    size_t length() const { return m_str.length(); }
    size_t max_size() const { return m_str.max_size(); }
    size_t capacity() const { return m_str.capacity(); }
    bool empty() const { return m_str.empty(); }
    void clear() { m_str.clear(); }
    void resize(size_t count, char ch = '\0') { m_str.resize(count, ch); }
    void reserve(size_t count) { m_str.reserve(count); }
    void swap(gcstring &other) noexcept { m_str.swap(other.m_str); }

    char &operator[](size_t index) { return m_str[index]; }
    const char &operator[](size_t index) const { return m_str[index]; }
    char &at(size_t index) { return m_str.at(index); }
    const char &at(size_t index) const { return m_str.at(index); }

    gcstring &append(const gcstring &text)
    {
        m_str.append(text.m_str);
        return *this;
    }
    gcstring &append(const char *text, size_t count)
    {
        m_str.append(text, count);
        return *this;
    }
    gcstring &append(size_t count, char ch)
    {
        m_str.append(count, ch);
        return *this;
    }
    gcstring &assign(const gcstring &text)
    {
        m_str = text.m_str;
        return *this;
    }
    gcstring &assign(const char *text, size_t count)
    {
        m_str.assign(text, count);
        return *this;
    }
    gcstring &operator+=(const gcstring &text) { return append(text); }
    gcstring &operator+=(const char *text)
    {
        m_str += text ? text : "";
        return *this;
    }
    gcstring &operator+=(char ch)
    {
        m_str += ch;
        return *this;
    }

    int compare(const gcstring &other) const { return m_str.compare(other.m_str); }
    size_t find(char ch, size_t offset = 0) const { return m_str.find(ch, offset); }
    size_t find(const gcstring &text, size_t offset = 0) const
    {
        return m_str.find(text.m_str, offset);
    }
    size_t rfind(char ch, size_t offset = _npos) const { return m_str.rfind(ch, offset); }
    size_t rfind(const gcstring &text, size_t offset = _npos) const
    {
        return m_str.rfind(text.m_str, offset);
    }
    size_t find_first_of(const gcstring &chars, size_t offset = 0) const
    {
        return m_str.find_first_of(chars.m_str, offset);
    }
    size_t find_first_not_of(const gcstring &chars, size_t offset = 0) const
    {
        return m_str.find_first_not_of(chars.m_str, offset);
    }
    size_t find_last_of(const gcstring &chars, size_t offset = _npos) const
    {
        return m_str.find_last_of(chars.m_str, offset);
    }
    size_t find_last_not_of(const gcstring &chars, size_t offset = _npos) const
    {
        return m_str.find_last_not_of(chars.m_str, offset);
    }
    gcstring substr(size_t offset = 0, size_t count = _npos) const
    {
        return gcstring(m_str.substr(offset, count));
    }

    /// The GenICam string converts to a C string implicitly, as hosts expect.
    operator const char *() const { return m_str.c_str(); }

    /// Access to the underlying standard string; our own addition.
    const std::string &str() const { return m_str; }
    /// Moves the text out and leaves this string empty: a large text changes
    /// hands without a copy. Our own addition.
    std::string take()
    {
        std::string text;
        text.swap(m_str);
        return text;
    }

private:
    std::string m_str;
};

inline bool operator==(const gcstring &a, const gcstring &b)
{
    return a.str() == b.str();
}
inline bool operator==(const gcstring &a, const char *b)
{
    return a.str() == (b ? b : "");
}
inline bool operator==(const char *a, const gcstring &b)
{
    return b == a;
}
inline bool operator!=(const gcstring &a, const gcstring &b)
{
    return !(a == b);
}
inline bool operator!=(const gcstring &a, const char *b)
{
    return !(a == b);
}
inline bool operator!=(const char *a, const gcstring &b)
{
    return !(b == a);
}
inline bool operator<(const gcstring &a, const gcstring &b)
{
    return a.str() < b.str();
}
inline bool operator>(const gcstring &a, const gcstring &b)
{
    return b < a;
}
inline bool operator<=(const gcstring &a, const gcstring &b)
{
    return !(b < a);
}
inline bool operator>=(const gcstring &a, const gcstring &b)
{
    return !(a < b);
}
inline gcstring operator+(const gcstring &a, const gcstring &b)
{
    gcstring result(a);
    result += b;
    return result;
}
inline gcstring operator+(const gcstring &a, const char *b)
{
    gcstring result(a);
    result += b;
    return result;
}
inline gcstring operator+(const char *a, const gcstring &b)
{
    gcstring result(a);
    result += b;
    return result;
}
GCBASE_API std::ostream &operator<<(std::ostream &stream, const gcstring &text);

/// A list of strings, as returned by GetSymbolics() and similar calls.
class GCBASE_API gcstring_vector {
public:
    using const_iterator = std::vector<gcstring>::const_iterator;
    using iterator = std::vector<gcstring>::iterator;

    gcstring_vector() = default;
    explicit gcstring_vector(size_t count, const gcstring &value = gcstring())
        : m_items(count, value)
    {
    }

    size_t size() const { return m_items.size(); }
    bool empty() const { return m_items.empty(); }
    void clear() { m_items.clear(); }
    void push_back(const gcstring &value) { m_items.push_back(value); }
    void pop_back() { m_items.pop_back(); }
    void reserve(size_t count) { m_items.reserve(count); }
    void resize(size_t count, const gcstring &value = gcstring()) { m_items.resize(count, value); }
    gcstring &operator[](size_t index) { return m_items[index]; }
    const gcstring &operator[](size_t index) const { return m_items[index]; }
    gcstring &at(size_t index) { return m_items.at(index); }
    const gcstring &at(size_t index) const { return m_items.at(index); }
    gcstring &front() { return m_items.front(); }
    gcstring &back() { return m_items.back(); }
    iterator begin() { return m_items.begin(); }
    iterator end() { return m_items.end(); }
    const_iterator begin() const { return m_items.begin(); }
    const_iterator end() const { return m_items.end(); }
    iterator erase(iterator position) { return m_items.erase(position); }
    iterator insert(iterator position, const gcstring &value)
    {
        return m_items.insert(position, value);
    }

private:
    std::vector<gcstring> m_items;
};

} // namespace GenICam_3_0

namespace GenICam = GenICam_3_0;

#endif

// The formula parser rejects or accepts any text without crashing, and an
// accepted formula evaluates (or reports a division by zero) in both modes.
#include "formula.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace {
class Variables final : public GenApi_3_0::impl::FormulaVariables {
public:
    int64_t intVariable(int index) override { return index == 0 ? -7 : 0x7FFFFFFFFFFFFFFF; }
    double floatVariable(int index) override { return index == 0 ? -7.5 : 1e308; }
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using GenApi_3_0::impl::Formula;
    const std::string text(reinterpret_cast<const char *>(data), size);
    Formula formula;
    try {
        formula = Formula::parse(text, { "A", "B", "FROM" });
    } catch (const std::invalid_argument &) {
        return 0;
    }
    Variables variables;
    try {
        formula.evaluateInt(variables);
    } catch (const std::domain_error &) {
    }
    try {
        formula.evaluateFloat(variables);
    } catch (const std::domain_error &) {
    }
    return 0;
}

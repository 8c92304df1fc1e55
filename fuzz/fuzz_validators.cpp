// Any text, position, locale and range through the validators of the IP
// address and 64-bit integer fields: no crash, the text and position stay
// as the validator's contract says, and an Acceptable number is one the
// locale reads back inside the range.
#include "widgets/int64validator.h"
#include "widgets/ip4validator.h"

#include <QLocale>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

[[noreturn]] void fail(const char *what, const QString &text)
{
    fprintf(stderr, "%s: \"%s\"\n", what, qPrintable(text));
    abort();
}

const QLocale &localeFor(uint8_t choice)
{
    static const QLocale locales[]
        = { QLocale::c(), QLocale(QLocale::German, QLocale::Germany),
            QLocale(QLocale::French, QLocale::France), QLocale(QLocale::Hindi, QLocale::India),
            QLocale(QLocale::Arabic, QLocale::Egypt) };
    return locales[choice % (sizeof locales / sizeof *locales)];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 19)
        return 0;
    int64_t bounds[2];
    std::memcpy(bounds, data, sizeof bounds);
    const uint8_t localeChoice = data[16];
    const uint8_t base = data[17] % 2 ? 16 : 10;
    const int posChoice = data[18];
    const QString text
        = QString::fromUtf8(reinterpret_cast<const char *>(data + 19), static_cast<int>(size - 19));

    {
        OrbGui::IP4Validator ip;
        QString input = text;
        int pos = posChoice % (input.size() + 1);
        const int before = pos;
        const QValidator::State state = ip.validate(input, pos);
        if (input != text || pos != before)
            fail("the IP validator changed its input", text);
        // Leading zeros and blanks around the numbers are accepted and read
        // as decimal; what the address is written back as must validate and
        // read as the same address.
        if (state == QValidator::Acceptable && !text.isEmpty()) {
            const unsigned address = OrbGui::IP4Validator::getIp(text);
            QString written = OrbGui::IP4Validator::getIpStr(address);
            int at = 0;
            if (ip.validate(written, at) != QValidator::Acceptable
                || OrbGui::IP4Validator::getIp(written) != address)
                fail("an accepted address does not read back", text);
        }
    }

    QLocale::setDefault(localeFor(localeChoice));
    OrbGui::Int64Validator number(std::min(bounds[0], bounds[1]), std::max(bounds[0], bounds[1]));
    number.setBase(base);
    QString input = text;
    int pos = posChoice % (input.size() + 1);
    const QValidator::State state = number.validate(input, pos);
    if (pos < 0 || pos > input.size())
        fail("the number validator moved the cursor outside the text", text);
    if (state == QValidator::Acceptable && base == 10) {
        bool ok = false;
        const qlonglong value = QLocale().toLongLong(input, &ok);
        if (ok && (value < number.bottom() || value > number.top()))
            fail("an accepted number lies outside the range", text);
    }
    number.fixup(input);
    return 0;
}

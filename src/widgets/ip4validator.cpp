#include "ip4validator.h"

#include <QStringList>

namespace OrbGui {

IP4Validator::IP4Validator(QObject *parent)
    : QValidator(parent)
{
}

IP4Validator::~IP4Validator() = default;

QValidator::State IP4Validator::validate(QString &input, int &) const
{
    if (input.isEmpty())
        return Acceptable;
    const QStringList parts = input.split(QLatin1Char('.'));
    if (parts.size() > 4)
        return Invalid;
    bool anyEmpty = false;
    for (const QString &part : parts) {
        const QString trimmed = part.trimmed();
        if (trimmed.isEmpty()) {
            anyEmpty = true;
            continue;
        }
        bool ok = false;
        const uint value = trimmed.toUInt(&ok, 10);
        if (!ok || value > 255)
            return Invalid;
    }
    if (parts.size() == 4 && !anyEmpty)
        return Acceptable;
    return Intermediate;
}

unsigned IP4Validator::getIp(const QString &text)
{
    unsigned address = 0;
    for (const QString &part : text.split(QLatin1Char('.')))
        address = (address << 8) | part.trimmed().toUInt(nullptr, 10);
    return address;
}

QString IP4Validator::getIpStr(unsigned address)
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg((address >> 24) & 0xFF)
        .arg((address >> 16) & 0xFF)
        .arg((address >> 8) & 0xFF)
        .arg(address & 0xFF);
}

} // namespace OrbGui

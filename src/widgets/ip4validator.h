#ifndef ORBGUI_IP4VALIDATOR_H
#define ORBGUI_IP4VALIDATOR_H

#include <QValidator>

namespace OrbGui {

// Validates dotted IPv4 text ("192.168.1.10") and converts between the text
// and 32-bit addresses whose most significant byte is the first number.
class IP4Validator : public QValidator {
    Q_OBJECT

public:
    explicit IP4Validator(QObject *parent = nullptr);
    ~IP4Validator() override;

    // An empty text is Acceptable (an empty field passes); a partial
    // address is Intermediate. Never changes the text or the position.
    State validate(QString &input, int &pos) const override;

    static unsigned getIp(const QString &text);
    static QString getIpStr(unsigned address);
};

} // namespace OrbGui

#endif

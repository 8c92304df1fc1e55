// The editors that the parameter model hands out beyond the plain widgets:
// what a user types into them is kept as typed until the commit, which
// limits it to the feature's range (and grid) or refuses it with a reason.
#ifndef ORBGUI_FEATUREEDITORS_H
#define ORBGUI_FEATUREEDITORS_H

#include "widgets/ip4validator.h"

#include <QDoubleSpinBox>

namespace OrbGui {

// A float feature's editor. Any number can be typed, beyond the range or
// with more decimals than the feature shows, and stays as typed: outside the
// range the editor is marked and nothing is committed; with an increment the
// committed number is snapped to the grid counted from the minimum, and
// showCommitted() shows that number before it is written.
class FeatureDoubleSpinBox : public QDoubleSpinBox {
    Q_OBJECT

public:
    explicit FeatureDoubleSpinBox(QWidget *parent = nullptr);

    // 0: no grid.
    void setIncrement(double increment) { m_increment = increment; }

    // The step of the arrows for a feature without an increment: the
    // smallest change the display shows (10^-decimals), or, when the range
    // is finite and holds more than a thousand of those, the power of ten
    // nearest below a thousandth of the range, so that a held arrow (with
    // acceleration) crosses the range in reasonable time.
    static double usefulStep(double minimum, double maximum, int decimals);

    // Puts the number a commit would take (snapped, rounded to the shown
    // decimals) into the field when it is not the number typed, and says
    // whether it did; the value itself is not committed.
    bool showCommitted();

    QValidator::State validate(QString &text, int &pos) const override;
    void fixup(QString &text) const override;
    double valueFromText(const QString &text) const override;

private:
    bool readNumber(const QString &text, double *value) const;
    void followTyping();
    double m_increment = 0;
};

// The address field of an IPv4 feature: unlike the validator of the
// address dialogs, an empty field is not an address here, and digits and
// points are kept as typed (a number above 255, a fourth digit) so that the
// refusal can say why.
class AddressEditValidator : public IP4Validator {
    Q_OBJECT

public:
    using IP4Validator::IP4Validator;
    State validate(QString &input, int &pos) const override;
    // Why the text is not an address, or empty when it is one.
    static QString refusal(const QString &text);
};

} // namespace OrbGui

#endif

// What our spin boxes share when the user types a number outside the range:
// the text stays as typed (no keystroke refused, nothing clamped), the
// field is marked (red text and a tool tip with the range and the step),
// Enter writes nothing while it is outside, and Escape, or leaving the
// field, brings the box's value back.
#ifndef ORBGUI_OUTOFRANGE_P_H
#define ORBGUI_OUTOFRANGE_P_H

#include <QAbstractSpinBox>
#include <QCoreApplication>
#include <QLineEdit>
#include <QPalette>

namespace OrbGui {

// Marks (or unmarks) the box. The "outOfRange" property says which, for
// hosts that style it and for tests.
inline void markOutOfRange(QAbstractSpinBox *box, QLineEdit *edit, bool outside,
                           const QString &minimum, const QString &maximum, const QString &step)
{
    if (box->property("outOfRange").toBool() == outside)
        return;
    box->setProperty("outOfRange", outside);
    QPalette palette = edit->palette();
    if (outside) {
        box->setProperty("toolTipBeforeRange", box->toolTip());
        palette.setColor(QPalette::Text, Qt::red);
        box->setToolTip(
            step.isEmpty()
                ? QCoreApplication::translate("OrbGui::QtOrbSpinBox",
                                              "Out of range: %1 to %2. Enter writes nothing; "
                                              "Escape brings the value back.")
                      .arg(minimum, maximum)
                : QCoreApplication::translate("OrbGui::QtOrbSpinBox",
                                              "Out of range: %1 to %2 in steps of %3. Enter "
                                              "writes nothing; Escape brings the value back.")
                      .arg(minimum, maximum, step));
    } else {
        palette.setColor(QPalette::Text, box->palette().color(QPalette::Text));
        box->setToolTip(box->property("toolTipBeforeRange").toString());
    }
    edit->setPalette(palette);
}

} // namespace OrbGui

#endif
